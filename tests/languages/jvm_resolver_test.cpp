#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

TEST(JvmResolver, FindsImportedTypes) {
  check({
      {"by package and type, wherever the file stands",
       {{"src/main/java/p/A.java", "package p; import q.B; class A {}"},
        {"odd/B.java", "package q; class B {}"}},
       {"src/main/java/p/A.java -> odd/B.java"}},
      {"nested types, static members and all of them from the file around them",
       {{"A.java",
         "package p; import q.B.Inner.Deep; import static q.C.of; import static q.D.*; import "
         "q.E.*;"},
        {"B.java", "package q; class B { class Inner { class Deep {} } }"},
        {"C.java", "package q; class C {}"},
        {"D.java", "package q; class D {}"},
        {"E.java", "package q; class E {}"}},
       {"A.java -> B.java", "A.java -> C.java", "A.java -> D.java", "A.java -> E.java"}},
      {"a second type of a file",
       {{"A.java", "package p; import q.Helper;"},
        {"B.java", "package q; class B {} class Helper {}"}},
       {"A.java -> B.java"}},
      {"a wildcard leads to what is used",
       {{"A.java", "package p; import q.*; class A { B b; D d; }"},
        {"B.java", "package q; class B {}"},
        {"C.java", "package q; class C {}"},
        {"sub/D.java", "package q.sub; class D {}"}},
       {"A.java -> B.java"}},
      {"a name with its package in the code, or before the package's own",
       {{"A.java", "package p; class A { q.r.B b; }"},
        {"B.java", "package q.r; class B {}"},
        {"package-info.java", "@q.r.B\npackage p;"}},
       {"A.java -> B.java", "package-info.java -> B.java"}},
  });
}

TEST(JvmResolver, FindsTypesOfTheSamePackage) {
  check({
      {"when they are used, not in comments or text",
       {{"a/A.java", "package p; class A extends B { /* C */ String s = \"C\"; }"},
        {"b/B.java", "package p; class B {}"},
        {"b/C.java", "package p; class C {}"}},
       {"a/A.java -> b/B.java"}},
      {"unless the file declares or imports another one of that name",
       {{"A.java", "package p; import java.util.List; class A { List l; B b; class B {} }"},
        {"List.java", "package p; class List {}"},
        {"B.java", "package p; class B {}"}},
       {}},
      {"a nested type of that name does not count in the head of its own class",
       {{"A.java", "package p; class A implements B<A> { static class B {} }"},
        {"B.java", "package p; interface B<T> {}"}},
       {"A.java -> B.java"}},
      {"the own package goes before a wildcard",
       {{"A.java", "package p; import q.*; class A { B b; }"},
        {"B.java", "package p; class B {}"},
        {"q/B.java", "package q; public class B {}"}},
       {"A.java -> B.java"}},
      {"a type that the package declares twice is none",
       {{"A.java", "package p; class A { Twice t; }"},
        {"B.java", "package p; class B {} class Twice {}"},
        {"C.java", "package p; class C {} class Twice {}"}},
       {}},
  });
}

TEST(JvmResolver, TellsSourceTreesApart) {
  check({
      {"the nearest of several declarations counts",
       {{"one/src/main/java/p/A.java", "package p; class A { B b; }"},
        {"one/src/main/java/p/B.java", "package p; class B {}"},
        {"two/src/main/java/p/B.java", "package p; class B {}"},
        {"two/src/test/java/q/ATest.java", "package q; import p.B; class ATest {}"}},
       {"one/src/main/java/p/A.java -> one/src/main/java/p/B.java",
        "two/src/test/java/q/ATest.java -> two/src/main/java/p/B.java"}},
      {"product code reaches no stand-in among the tests, tests do",
       {{"src/main/java/p/A.java", "package p; import lib.Thing; class A {}"},
        {"src/test/java/p/ATest.java", "package p; import lib.Thing; class ATest { A a; }"},
        {"src/test/resources/lib/Thing.java", "package lib; public class Thing {}"}},
       {"src/test/java/p/ATest.java -> src/test/resources/lib/Thing.java",
        "src/test/java/p/ATest.java -> src/main/java/p/A.java"}},
      {"a package named test is no test",
       {{"src/main/java/p/A.java", "package p; import p.test.B; class A {}"},
        {"src/main/java/p/test/B.java", "package p.test; public class B {}"}},
       {"src/main/java/p/A.java -> src/main/java/p/test/B.java"}},
      {"the platform stays outside",
       {{"A.java", "package p; import java.util.List; class A {}"},
        {"jdk/List.java", "package java.util; interface List extends Collection {}"},
        {"jdk/Collection.java",
         "package java.util; import java.util.List; interface Collection {}"}},
       {"jdk/List.java -> jdk/Collection.java", "jdk/Collection.java -> jdk/List.java"}},
      {"a missing type of a local package is counted, a library is not",
       {{"A.java",
         "package p.q; import p.q.gen.Made; import p.q.Gone; import org.lib.Thing; import lib.*; "
         "class A {}"}},
       {"unresolved 1"}},
  });
}

TEST(JvmResolver, SeesJavaAndKotlinTogether) {
  check({
      {"types both ways, functions as the class that holds them",
       {{"A.java", "package p; import q.K; import static q.ToolsKt.run; class A {}"},
        {"K.kt", "package q\nimport p.A\nclass K\n"},
        {"tools.kt", "package q\nfun run() = 1\n"}},
       {"A.java -> K.kt", "A.java -> tools.kt", "K.kt -> A.java"}},
      {"functions, properties, aliases and members by name",
       {{"A.kt",
         "package p\nimport q.run as go\nimport q.limit\nimport q.Name\nimport q.Obj.member\n"},
        {"Run.kt", "package q\nfun String.run() = 1\n"},
        {"Limit.kt", "package q\nval limit = 1\n"},
        {"Name.kt", "package q\ntypealias Name = String\n"},
        {"Obj.kt", "package q\nobject Obj {\n  fun member() = 1\n}\n"}},
       {"A.kt -> Run.kt", "A.kt -> Limit.kt", "A.kt -> Name.kt", "A.kt -> Obj.kt"}},
      {"a wildcard leads to the functions called",
       {{"A.kt", "package p\nimport q.*\nfun f(x: Int) = x.run { stay }\n"},
        {"Run.kt", "package q\nfun Int.run() = 1\n"},
        {"Stay.kt", "package q\nval stay = 1\n"}},
       {"A.kt -> Run.kt"}},
      {"overloads of several files and packages, and functions that are named like a type",
       {{"A.kt", "package p\nimport q.*\nimport r.*\nval a = get(Box())\n"},
        {"Get.kt", "package q\nfun get(x: Int) = 1\nfun Box() = Box(1)\n"},
        {"More.kt", "package q\nfun get(x: String) = 1\n"},
        {"Far.kt", "package r\nfun get(x: Long) = 1\n"},
        {"Box.kt", "package q\nclass Box(x: Int)\n"}},
       {"A.kt -> Box.kt", "A.kt -> Far.kt", "A.kt -> Get.kt", "A.kt -> More.kt"}},
      {"what is private or stands in a script is seen by its file only",
       {{"A.kt", "package p\nclass A : Base(), Other\n"},
        {"B.kt", "package p\nprivate class Base\n"},
        {"c.kts", "package p\nclass Other\n"}},
       {}},
      {"what one platform declares counts on that platform",
       {{"src/commonMain/Clock.kt", "package p\nexpect class Clock\n"},
        {"src/commonMain/Use.kt", "package p\nval a: Clock? = null\n"},
        {"src/jsMain/Clock.kt", "package p\nactual class Clock\n"},
        {"src/jvmMain/Clock.kt", "package p\nactual class Clock\n"},
        {"src/jvmTest/Use.kt", "package p\nval b: Clock? = null\n"},
        {"app/Use.kt", "package q\nimport p.Clock\n"}},
       {"app/Use.kt -> src/commonMain/Clock.kt", "src/commonMain/Use.kt -> src/commonMain/Clock.kt",
        "src/jvmTest/Use.kt -> src/jvmMain/Clock.kt"}},
      {"a platform's overloads count besides those of all, in modules of that platform too",
       {{"io/common/src/Read.kt", "package p\nfun read(x: Int) = 1\n"},
        {"io/jvm/src/Read.kt", "package p\nfun read(x: Long) = 1\n"},
        {"io/posix/src/Read.kt", "package p\nfun read(x: Short) = 1\n"},
        {"io/common/src/Use.kt", "package q\nimport p.read\n"},
        {"net/jvm/src/Use.kt", "package q\nimport p.*\nval a = read(1)\n"},
        {"posix.kt", "package q\nimport p.read\n"}},
       {"io/common/src/Use.kt -> io/common/src/Read.kt",
        "net/jvm/src/Use.kt -> io/common/src/Read.kt", "net/jvm/src/Use.kt -> io/jvm/src/Read.kt",
        "posix.kt -> io/common/src/Read.kt"}},
  });
}

TEST(JvmResolver, WeighsByUse) {
  EXPECT_THAT(
      weighted_edges_of(
          {{"A.java",
            "package p; import q.B; import r.*; class A { B b = new B(); C c; D d; D e; E f; }"},
           {"B.java", "package q; public class B {}"},
           {"C.java", "package p; class C {}"},
           {"D.java", "package r; public class D {} class E {}"}}),
      ElementsAre("A.java -> B.java *3", "A.java -> C.java *1", "A.java -> D.java *4"));
}

TEST(JvmResolver, FollowsScalaFromPackageToPackage) {
  check({
      {"by names that start in a package around, and from the top of all of them",
       {{"A.scala", "package p\npackage q\nimport r.B\nimport _root_.p.C\nclass A"},
        {"B.scala", "package p.r\nclass B"},
        {"C.scala", "package p\nclass C"},
        {"D.scala", "package r\nclass B"}},
       {"A.scala -> B.scala", "A.scala -> C.scala"}},
      {"to what packages around declare, the nearest first",
       {{"A.scala", "package p.q\nclass A(b: B, c: C)"},
        {"B.scala", "package p\nclass B"},
        {"C.scala", "package p\nclass C"},
        {"D.scala", "package p.q\nclass C"}},
       {"A.scala -> B.scala", "A.scala -> D.scala"}},
      {"to what a package object holds, when it is called",
       {{"A.scala", "package p\nimport q._\nimport q.other\nclass A { val a = help(1) }"},
        {"package.scala", "package p\npackage object q { def help(x: Int) = x }"},
        {"q/Other.scala", "package p.q\nobject other"}},
       {"A.scala -> package.scala", "A.scala -> q/Other.scala"}},
      {"several names of one import, renamed or left out",
       {{"A.scala", "import p.{B, C => D, E => _}, p.F\nclass A"},
        {"p/B.scala", "package p\nclass B"},
        {"p/C.scala", "package p\nclass C"},
        {"p/E.scala", "package p\nclass E"},
        {"p/F.scala", "package p\nclass F"}},
       {"A.scala -> p/B.scala", "A.scala -> p/C.scala", "A.scala -> p/F.scala"}},
      {"Java and Scala see each other; scripts declare nothing",
       {{"A.java", "package p; class A { B b; }"},
        {"B.scala", "package p\nclass B(a: A, c: C)"},
        {"build.sbt", "class C"}},
       {"A.java -> B.scala", "B.scala -> A.java"}},
  });
}

}  // namespace
}  // namespace kestrix::index
