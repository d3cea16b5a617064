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
      {"a name with its package in the code",
       {{"A.java", "package p; class A { q.r.B b; }"}, {"B.java", "package q.r; class B {}"}},
       {"A.java -> B.java"}},
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

}  // namespace
}  // namespace kestrix::index
