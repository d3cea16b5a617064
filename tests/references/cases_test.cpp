#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/page_sources/output.h"
#include "capi/answers/references.h"
#include "kestrix/index/refresh/indexer.h"
#include "tests/index/scratch.h"

namespace kestrix::program {
namespace {

struct Case {
  std::string name;
  std::vector<std::pair<std::string, std::string>> files;
  std::vector<std::string> references;  ///< "file role target name", in any order
};

// Of each reference all but its lines and counts.
std::vector<std::string> references_of(const Case& test) {
  const index::Scratch scratch;
  for (const auto& [path, text] : test.files) scratch.write("repository/" + path, text);
  index::IndexOptions options;
  options.root = scratch / "repository";
  options.file = scratch / "index";
  const auto opened = index::refresh_and_open(options);
  const std::string all = references_as_tsv(
      find_references(*opened.index, {.to = {}, .from = {}, .roles = {}, .self = true}));
  std::vector<std::string> found;
  for (std::string_view rest = all; !rest.empty(); rest.remove_prefix(rest.find('\n') + 1)) {
    std::vector<std::string_view> fields;
    for (std::string_view line = rest.substr(0, rest.find('\n'));;) {
      fields.push_back(line.substr(0, line.find('\t')));
      if (line.find('\t') == std::string_view::npos) break;
      line.remove_prefix(line.find('\t') + 1);
    }
    std::string text(fields.at(0));
    for (const std::size_t at : {2U, 3U, 4U}) {
      if (!fields.at(at).empty()) text.append(" ").append(fields.at(at));
    }
    found.push_back(std::move(text));
  }
  return found;
}

void check(const std::vector<Case>& cases) {
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    EXPECT_THAT(references_of(test), testing::UnorderedElementsAreArray(test.references));
  }
}

TEST(ReferenceCases, SayWhatTheTargetTurnsOutToBe) {
  check({
      {"what is extended is a contract, what is implemented a class",
       {{"A.scala", "trait T\nclass C extends T\nclass D extends C"},
        {"B.swift", "protocol P {}\nclass E: P {}\nstruct F: P {}\nclass G: E {}"}},
       {"A.scala implements A.scala T", "A.scala extends A.scala C", "B.swift implements B.swift P",
        "B.swift extends B.swift E"}},
      {"a type that is called is constructed, a function that is made is called",
       {{"a.py", "class A: pass\ndef b(): return A()\n"}, {"b.py", "from a import A, b\nb()\n"}},
       {"a.py constructs a.py A", "b.py calls a.py b"}},
      {"what declares itself again and again names nobody else",
       {{"A.java", "class A { int f(int n) { return n > 0 ? f(n - 1) : 0; } }"}},
       {}},
  });
}

TEST(ReferenceCases, EndWhereTypesLeadInCircles) {
  check({
      {"bases of each other",
       {{"A.java", "class A extends B { void f() { g(); missing(); } }"},
        {"B.java", "class B extends A { void g() {} }"}},
       {"A.java extends B.java B", "A.java calls B.java B.g", "B.java extends A.java A"}},
      {"modules that hand each other on",
       {{"a.ts", "export * from './b'; import { x } from './b'; x();"},
        {"b.ts", "export * from './a'; export const x = () => 1;"}},
       {"a.ts calls b.ts x"}},
  });
}

TEST(ReferenceCases, LeaveOutWhatNothingDecides) {
  check({
      {"several declare it: it is neither theirs nor a library's",
       {{"p/A.kt", "package p\nfun pick(a: Int) = a"},
        {"p/B.kt", "package p\nfun pick(a: String) = a"},
        {"q/C.kt", "package q\nimport p.pick\nval c = pick(1)"}},
       {}},
      {"a companion's members are known by its name, not by being inherited",
       {{"A.scala", "trait T\nobject T { case class M(a: Int); def f = 1 }"},
        {"B.scala", "class M\nclass B extends T { val a = T.f; def g = new M }"}},
       {"B.scala implements A.scala T", "B.scala uses A.scala T.f",
        "B.scala constructs B.scala M"}},
      {"a private type of another file",
       {{"A.swift", "fileprivate struct Hidden {}"}, {"B.swift", "let b = Hidden()"}},
       {}},
  });
}

TEST(ReferenceCases, FollowMembersThatStandOutsideOfTheirType) {
  check({
      {"from the type to its extension, and back",
       {{"A.swift", "class A { func f() { g() }\n func h() {} }"},
        {"A+G.swift", "extension A { func g() { h(); k() }\n static func k() {} }"},
        {"B.swift", "func b() { A.k() }"}},
       {"A.swift calls A+G.swift A.g", "A+G.swift type A.swift A", "A+G.swift calls A.swift A.h",
        "A+G.swift calls A+G.swift A.k", "B.swift calls A+G.swift A.k"}},
      {"a type within an extension",
       {{"A.swift", "enum A {}"},
        {"A+B.swift", "extension A { struct B {} }"},
        {"C.swift", "let c: A.B = A.B()"}},
       {"A+B.swift type A.swift A", "C.swift type A+B.swift A.B",
        "C.swift constructs A+B.swift A.B"}},
      {"what a type without a name inherits",
       {{"A.kt", "open class A { fun size() = 1 }"},
        {"B.kt", "fun make() = object : A() { fun g() = size() }"}},
       {"B.kt extends A.kt A", "B.kt calls A.kt A.size"}},
  });
}

TEST(ReferenceCases, ReadWhatMacrosSay) {
  check({
      {"associations name classes in the plural, by symbols and by options",
       {{"app/models/user.rb",
         "class User\n  has_many :line_items\n  belongs_to :owner, class_name: \"Admin\"\nend\n"},
        {"app/models/line_item.rb", "class LineItem\nend\n"},
        {"app/models/admin.rb", "class Admin\nend\n"}},
       {"app/models/user.rb annotates has_many", "app/models/user.rb annotates belongs_to",
        "app/models/user.rb string app/models/line_item.rb LineItem",
        "app/models/user.rb string app/models/admin.rb Admin"}},
  });
}

}  // namespace
}  // namespace kestrix::program
