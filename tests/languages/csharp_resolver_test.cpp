#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

TEST(CSharpResolver, FindsTypesByNamespace) {
  check({
      {"wherever the file stands, when they are used",
       {{"a/A.cs", "using M.N;\nusing System;\nnamespace P;\nclass A : B { String C; }"},
        {"odd/B.cs", "namespace M.N { class B {} }"},
        {"odd/C.cs", "namespace M.N { class C {} }"},
        {"odd/String.cs", "namespace System { class String {} }"}},
       {"a/A.cs -> odd/B.cs"}},
      {"of the own namespace and those around it, the inner one first",
       {{"A.cs", "namespace M.N.O; class A { B b; C c; D d; E e; }"},
        {"B.cs", "namespace M.N.O; class B {}"},
        {"C.cs", "namespace M.N; class C {}"},
        {"D.cs", "namespace M.N.O; class D {}"},
        {"D2.cs", "namespace M; class D {}"},
        {"E.cs", "class E {}"},
        {"F.cs", "namespace M.N.P; class B {}"}},
       {"A.cs -> B.cs", "A.cs -> C.cs", "A.cs -> D.cs", "A.cs -> E.cs"}},
      {"several namespaces of a file, relative directives inside of them",
       {{"A.cs", "namespace M { using N; class A { B b; } } namespace O { class C { D d; } }"},
        {"B.cs", "namespace M.N { class B {} }"},
        {"D.cs", "namespace O { class D {} }"}},
       {"A.cs -> B.cs", "A.cs -> D.cs"}},
      {"static directives, aliases and names spelled out",
       {{"A.cs",
         "using static M.B; using X = M.C<int>; using N = M.N; namespace M.O;\n"
         "class A { N.D d; M.P.E e; P.F.Inner f; global::M.G g = M.H.Make(); System.I i;\n"
         "  bool J(object o) => o is N.J or N.J.K; }"},
        {"B.cs", "namespace M; static class B {}"},
        {"C.cs", "namespace M; class C<T> {}"},
        {"C0.cs", "namespace M; class C {}"},
        {"D.cs", "namespace M.N; class D {}"},
        {"E.cs", "namespace M.P; class E {}"},
        {"F.cs", "namespace M.P; class F { class Inner {} }"},
        {"G.cs", "namespace M; class G {}"},
        {"H.cs", "namespace M; class H {}"},
        {"I.cs", "namespace M; class I {}"},
        {"J.cs", "namespace M.N; class J {}"}},
       {"A.cs -> B.cs", "A.cs -> C.cs", "A.cs -> D.cs", "A.cs -> E.cs", "A.cs -> F.cs",
        "A.cs -> G.cs", "A.cs -> H.cs", "A.cs -> J.cs"}},
      {"types by the number of their parameters, attributes without their ending",
       {{"A.cs", "namespace M; [Mark, Sign] class A { R<int> r; S s; }"},
        {"R.cs", "namespace M; class R {}"},
        {"R1.cs", "namespace M; class R<T> {}"},
        {"S.cs", "namespace M; delegate void S();"},
        {"S1.cs", "namespace M; class S<T> {}"},
        {"Mark.cs", "namespace M; class MarkAttribute {}"},
        {"Sign.cs", "namespace M; class Sign : System.Attribute {}"},
        {"Other.cs", "namespace M; class Mark {}"}},
       {"A.cs -> R1.cs", "A.cs -> S.cs", "A.cs -> Mark.cs", "A.cs -> Sign.cs"}},
      {"extension methods that one file in sight declares",
       {{"A.cs", "using M; using N; class A { void F(int x) { x.Go(); x?.Run<int>(); x.Two(); } }"},
        {"Go.cs", "namespace M; static class G { public static void Go(this int x) {} }"},
        {"Run.cs", "namespace N; static class R { public static void Run<T>(this int x) {} }"},
        {"Two.cs", "namespace M; static class T { public static void Two(this int x) {} }"},
        {"Three.cs", "namespace M; static class U { public static void Two(this long x) {} }"},
        {"Far.cs", "namespace Q; static class V { public static void F(this long x) {} }"}},
       {"A.cs -> Go.cs", "A.cs -> Run.cs"}},
  });
}

TEST(CSharpResolver, KnowsNoUseFromAName) {
  check({
      {"of members, values, parameters, labels and what the file declares itself",
       {{"A.cs",
         "namespace M; class A<T> { T t; int B; void C() { B(); B.D(); x.E = 1; F: G(H: 2); }\n"
         "  class I {} I i; string s = \"J\"; /* K */ object o = new { L = 1 }; }"},
        {"All.cs",
         "namespace M; class B {} class C {} class D {} class E {} class F {} class G {} class H "
         "{} class I {} class J {} class K {} class L {} class T {}"}},
       {}},
      {"a nested type in the head of the type around it is another one",
       {{"A.cs", "namespace M; class A : B<A> { class B<T> {} B<int> b; }"},
        {"B.cs", "namespace M; class B<T> {}"}},
       {"A.cs -> B.cs"}},
      {"a missing type of a namespace at hand is a miss, a library is none",
       {{"A.cs",
         "using M.Gone; using Lib.Core; using System.Text; using static M.No; namespace M; class A "
         "{}"}},
       {"unresolved 2"}},
  });
}

TEST(CSharpResolver, SeesWhatTheProjectSees) {
  const std::string project = "<Project Sdk=\"Microsoft.NET.Sdk\"><ItemGroup>";
  const std::string end = "</ItemGroup></Project>";
  check({
      {"the own project first, then those that it refers to, on any way",
       {{"app/App.csproj", project + "<ProjectReference Include=\"..\\lib\\Lib.csproj\" />" + end},
        {"lib/Lib.csproj",
         project + "<ProjectReference Include=\"$(Root)core/Core.csproj\" />" + end},
        {"core/Core.csproj", project + end},
        {"apple/Apple.csproj", project + end},
        {"app/A.cs", "namespace M; class A { B b; C c; D d; E e; }"},
        {"app/sub/B.cs", "namespace M; class B {}"},
        {"apple/B.cs", "namespace M; class B {}"},
        {"apple/E.cs", "namespace M; class E {}"},
        {"lib/C.cs", "namespace M; class C {}"},
        {"core/D.cs", "namespace M; class D {}"}},
       {"app/A.cs -> app/sub/B.cs", "app/A.cs -> lib/C.cs", "app/A.cs -> core/D.cs"}},
      {"projects by the name of their package, and by the sources that they compile",
       {{"app/App.csproj",
         project + "<PackageReference Include=\"Lib\" /><Compile Include=\"../core/*.cs\" />" +
             end},
        {"lib/Lib.csproj", project + end},
        {"core/Core.csproj", project + end},
        {"other/Other.csproj", project + end},
        {"open/Open.csproj", "<Project><Import Project=\"build.props\" /></Project>"},
        {"app/A.cs", "namespace M; class A { B b; C c; D d; }"},
        {"lib/B.cs", "namespace M; class B {}"},
        {"core/C.cs", "namespace M; class C {}"},
        {"other/D.cs", "namespace M; class D {}"},
        {"open/E.cs", "namespace M; class E { D d; }"}},
       {"app/A.cs -> lib/B.cs", "app/A.cs -> core/C.cs", "open/E.cs -> other/D.cs"}},
      {"what stands in a comment is nothing, a list is each of its entries",
       {{"app/App.csproj",
         project +
             "<!-- <ProjectReference Include=\"..\\core\\Core.csproj\" /> -->"
             "<ProjectReference Condition=\"'$(A)' > 1\"\n Include='../lib/Lib.csproj; "
             "../x/X.csproj'><Private>false</Private></ProjectReference>" +
             end},
        {"lib/Lib.csproj", "<Project><!-- <Import Project=\"a.props\" /> --></Project>"},
        {"x/X.csproj", project + end},
        {"core/Core.csproj", project + end},
        {"app/A.cs", "namespace M; class A { B b; C c; D d; }"},
        {"lib/B.cs", "namespace M; class B { C c; }"},
        {"core/C.cs", "namespace M; class C {}"},
        {"x/D.cs", "namespace M; class D {}"}},
       {"app/A.cs -> lib/B.cs", "app/A.cs -> x/D.cs"}},
      {"global directives of the project's sources, its file and what is shared above",
       {{"Directory.Build.props", "<Project><ItemGroup><Using Include=\"Shared\" />" + end},
        {"a/A.csproj",
         project + "<Using Include=\"N\" /><Using Include=\"N.Y\" Alias=\"Z\"/>" + end},
        {"a/Usings.cs", "global using M; global using X = M.Other;"},
        {"a/A.cs", "class A { B b; C c; D d; X x; Z z; }"},
        {"b/B.csproj", project + end},
        {"b/B.cs", "class A { B b; D d; }"},
        {"types.cs", "namespace M { class B {} }"},
        {"c.cs", "namespace N { class C {} }"},
        {"d.cs", "namespace Shared { class D {} }"},
        {"x.cs", "namespace M { class Other {} }"},
        {"y.cs", "namespace N { class Y {} }"}},
       {"a/A.cs -> types.cs", "a/A.cs -> c.cs", "a/A.cs -> d.cs", "a/A.cs -> x.cs",
        "a/A.cs -> y.cs", "a/Usings.cs -> x.cs", "b/B.cs -> d.cs"}},
      {"all parts of a partial type, the nearest of different ones",
       {{"P.csproj", project + end},
        {"A.cs", "class A { B b; }"},
        {"B.cs", "partial class B {}"},
        {"more/B.Async.cs", "partial class B {}"},
        {"ios/C.cs", "class C { D d; }"},
        {"ios/D.cs", "class D {}"},
        {"mac/D.cs", "class D {}"}},
       {"A.cs -> B.cs", "A.cs -> more/B.Async.cs", "B.cs -> more/B.Async.cs",
        "more/B.Async.cs -> B.cs", "ios/C.cs -> ios/D.cs"}},
  });
}

TEST(CSharpResolver, WeighsByUse) {
  EXPECT_THAT(
      weighted_edges_of({{"A.cs",
                          "using N; using X = N.E; namespace M; class A { B b = new B(); C c; X x; "
                          "D d; object o = typeof(B); }"},
                         {"B.cs", "namespace N; class B {}"},
                         {"C.cs", "namespace M; class C {}"},
                         {"D.cs", "namespace N; class D {}"},
                         {"E.cs", "namespace N; class E {}"}}),
      ElementsAre("A.cs -> B.cs *4", "A.cs -> C.cs *1", "A.cs -> D.cs *2", "A.cs -> E.cs *2"));
}

}  // namespace
}  // namespace kestrix::index
