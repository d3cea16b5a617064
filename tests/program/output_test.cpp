#include "apps/page_sources/output.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/page_sources/escape.h"

namespace kestrix::program {
namespace {

using nlohmann::json;

struct Escaped {
  std::string text;
  std::string json;
  std::string quoted;
};

TEST(Escape, WritesEveryByteSoThatItCanBeReadBack) {
  const std::vector<Escaped> cases{
      {"src/a b.py", R"("src/a b.py")", "src/a b.py"},
      {"é€😀", R"("é€😀")", "é€😀"},
      {"a\"b\\c", R"("a\"b\\c")", R"("a\"b\\c")"},
      {"tab\tline\n", R"("tab\tline\n")", R"("tab\tline\n")"},
      {"\x01\x1b\x7f", R"("\u0001\u001b\u007f")", R"("\001\033\177")"},
      {"latin \xe9t\xe9", R"("latin \udce9t\udce9")", R"("latin \351t\351")"},
      {"overlong \xc0\xaf", R"("overlong \udcc0\udcaf")", R"("overlong \300\257")"},
      {"surrogate \xed\xb3\xbf", R"("surrogate \udced\udcb3\udcbf")",
       R"("surrogate \355\263\277")"},
      {"beyond \xf4\x90\x80\x80", R"("beyond \udcf4\udc90\udc80\udc80")",
       R"("beyond \364\220\200\200")"},
      {"cut \xe2\x82", R"("cut \udce2\udc82")", R"("cut \342\202")"},
  };
  for (const Escaped& each : cases) {
    EXPECT_EQ(json_string(each.text), each.json);
    EXPECT_EQ(c_quoted(each.text), each.quoted);
  }
}

TEST(Escape, IdentifiersOfDotShowTheQuotedPath) {
  EXPECT_EQ(dot_string("a/b.py"), R"("a/b.py")");
  EXPECT_EQ(dot_string("a\"\\\xff"), R"("\"a\\\"\\\\\\377\"")");
}

TEST(Escape, MessagesStayOnOneLine) {
  EXPECT_EQ(one_line("a\n\x1b[2J\xff\""), R"(a\n\033[2J\377")");
}

const std::vector<PageAnswer> kPages{
    {PageName::kErrors, true, {}, {}},
    {PageName::kFlows, {}, {}, {{"jobs", {"jobs/a.py", "jobs/b.py"}, {"main.py"}}, {"x", {}, {}}}},
    {PageName::kDecisions, {}, {"docs/adr/2.md", "odd\tname.md"}, {}},
};

TEST(PagesAsText, ListsFilesUnderTheirPage) {
  EXPECT_EQ(pages_as_text(kPages, false), R"(errors (0)
  (only outside the production files)

flows (2)
  jobs (2 entry points)
    main.py
  x (0 entry points)

decisions (2)
  docs/adr/2.md
  "odd\tname.md"
)");
  EXPECT_EQ(pages_as_text(std::span(kPages).first(1), true).substr(0, 15), "\x1b[1merrors\x1b[0m ");
}

TEST(PagesAsJson, HoldsEveryMember) {
  EXPECT_EQ(json::parse(pages_as_json("/r\"", kPages)), json::parse(R"({
    "schema": 1, "repository": "/r\"", "pages": {
      "errors": {"has_material": true, "files": []},
      "flows": {"classes": [
        {"entry_points": "jobs", "roots": ["jobs/a.py", "jobs/b.py"], "files": ["main.py"]},
        {"entry_points": "x", "roots": [], "files": []}]},
      "decisions": {"files": ["docs/adr/2.md", "odd\tname.md"]}}})"));
  EXPECT_EQ(json::parse(pages_as_json("/", {}))["pages"], json::object());
}

TEST(Edges, HaveThreeForms) {
  const std::vector<FileEdge> edges{{"a.py", "b\t.py", 3}, {"a.py", "c.py", 1.5}};
  EXPECT_EQ(edges_as_tsv(edges), "a.py\t\"b\\t.py\"\t3\na.py\tc.py\t1.5\n");
  EXPECT_EQ(edges_as_dot(edges),
            "digraph edges {\n  \"a.py\" -> \"\\\"b\\\\t.py\\\"\" [weight=3];\n"
            "  \"a.py\" -> \"c.py\" [weight=1.5];\n}\n");
  EXPECT_EQ(json::parse(edges_as_json("/r", edges)), json::parse(R"({
    "schema": 1, "repository": "/r", "edges": [
      {"source": "a.py", "target": "b\t.py", "weight": 3},
      {"source": "a.py", "target": "c.py", "weight": 1.5}]})"));
}

TEST(Symbols, HaveTwoForms) {
  const std::vector<FoundSymbol> symbols{{"a.py", SymbolKind::kClass, "A", "class A(\"B\"):"}};
  EXPECT_EQ(symbols_as_tsv(symbols), "a.py\tclass\tA\t\"class A(\\\"B\\\"):\"\n");
  EXPECT_EQ(json::parse(symbols_as_json("/r", symbols)), json::parse(R"({
    "schema": 1, "repository": "/r", "symbols": [
      {"path": "a.py", "kind": "class", "name": "A", "signature": "class A(\"B\"):"}]})"));
}

}  // namespace
}  // namespace kestrix::program
