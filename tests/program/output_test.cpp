#include "apps/page_sources/output.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/page_sources/pick_text.h"
#include "capi/answers/escape.h"
#include "capi/answers/json.h"
#include "capi/answers/suggestions.h"

namespace kestrix::program {
namespace {

using nlohmann::json;
using testing::HasSubstr;

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
      {"c1 \xc2\x85\xc2\x9f\xc2\xa0", "\"c1 \\u0085\\u009f\xc2\xa0\"",
       "\"c1 \\302\\205\\302\\237\xc2\xa0\""},
      {"\u202e\u2066\u200f\u061c", R"("\u202e\u2066\u200f\u061c")",
       R"("\342\200\256\342\201\246\342\200\217\330\234")"},
      {"\u2028\u2029\u2010", "\"\\u2028\\u2029\u2010\"",
       "\"\\342\\200\\250\\342\\200\\251\u2010\""},
      {"\u00ad\u200b\u200d\ufeff\U000e0041\U0001f600",
       "\"\\u00ad\\u200b\u200d\\ufeff\\udb40\\udc41\U0001f600\"",
       "\"\\302\\255\\342\\200\\213\u200d\\357\\273\\277\\363\\240\\201\\201\U0001f600\""},
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
  EXPECT_EQ(one_line("\u009b2J\u202e"), R"(\302\2332J\342\200\256)");
}

// Makes the answers that a page of that name could have.
const Page* page_named(std::string_view name) {
  return std::ranges::find(kPages, name, &Page::name);
}

std::vector<AnsweredPage> some_pages() {
  PageAnswer errors;
  errors.has_material = true;
  errors.nothing_found = "only elsewhere";
  FlowsAnswer flows;
  flows.classes = {{"jobs", "main.py uses 2", {"jobs/a.py", "jobs/b.py"}, {{"main.py", {}}}, {}},
                   {"x", "", {}, {}, {}}};
  flows.total = 5;
  flows.truncated = true;
  PageAnswer decisions;
  decisions.files = {{"docs/adr/2.md", {{"rank", "1 of 3", 3, {{"docs/adr/2.md", 7, "n"}}}}},
                     {"odd\tname.md", {{"rank", "2\n of 3", 0, {}}}}};
  decisions.further = {{"NOTES.md", {{"named", "called so", 0, {}}}}};
  decisions.total = 3;
  decisions.truncated = true;
  return {{page_named("errors"), errors},
          {page_named("flows"), flows},
          {page_named("decisions"), decisions}};
}

TEST(PagesAsText, ListsFilesUnderTheirPageWithTheirStrongestReason) {
  EXPECT_EQ(pages_as_text(some_pages(), {}), R"(errors (0)
  only elsewhere

flows (2 of 5)
  jobs (2 entry points)  main.py uses 2
    main.py
  x (0 entry points)

decisions (2 of 3)
  docs/adr/2.md   1 of 3
  "odd\tname.md"  2\n of 3
  further (1)
    NOTES.md  called so
)");
}

TEST(PagesAsText, IsBoldAndDimmedAndCutOnATerminal) {
  const auto pages = some_pages();
  EXPECT_EQ(pages_as_text(std::span(pages).last(1), {true, 29}),
            "\x1b[1mdecisions\x1b[0m (2 of 3)\n"
            "  docs/adr/2.md\n"
            "  \"odd\\tname.md\"\n"
            "  further (1)\n"
            "    NOTES.md  \x1b[2mcalled so\x1b[0m\n");
  EXPECT_EQ(cut_to("änderung", 8), "änderung");
  EXPECT_EQ(cut_to("änderung", 4), "änd…");
}

TEST(PagesAsTsv, HasARowForEachFile) {
  EXPECT_EQ(pages_as_tsv(some_pages()),
            "flows\tmain.py\tfiles\tjobs: \n"
            "decisions\tdocs/adr/2.md\tfiles\t1 of 3\n"
            "decisions\t\"odd\\tname.md\"\tfiles\t\"2\\n of 3\"\n"
            "decisions\tNOTES.md\tfurther\tcalled so\n");
}

TEST(Paths, AreBareAndDistinct) {
  auto pages = some_pages();
  pages.push_back(pages.back());
  const auto paths = distinct_paths(pages);
  EXPECT_EQ(paths_as_lines(paths, false), "main.py\ndocs/adr/2.md\n\"odd\\tname.md\"\nNOTES.md\n");
  EXPECT_EQ(paths_as_lines(std::vector<std::string>{"a\nb", "c"}, true),
            std::string("a\nb\0c\0", 6));
}

About about_r() {
  About about;
  about.repository = "/r\"";
  about.revision = "abc";
  about.left_out.add("binary file", 2);
  about.warnings = {"sparse"};
  return about;
}

TEST(PagesAsJson, HoldsEveryMember) {
  const auto document = json::parse(pages_as_json(about_r(), some_pages()));
  EXPECT_EQ(document["schema"], 2);
  EXPECT_EQ(document["program"]["name"], "page-sources");
  EXPECT_EQ(document["repository"], "/r\"");
  EXPECT_EQ(document["revision"], "abc");
  EXPECT_TRUE(document["clean"].is_null());
  EXPECT_EQ(document["left_out"], json::parse(R"({"binary file": 2})"));
  EXPECT_EQ(document["warnings"], json::parse(R"(["sparse"])"));
  EXPECT_EQ(document["pages"], json::parse(R"({
      "errors": {"has_material": true, "files": [], "further": [], "total": 0, "truncated": false,
                 "nothing_found": "only elsewhere"},
      "flows": {"classes": [
        {"entry_points": "jobs", "sign": "main.py uses 2", "roots": ["jobs/a.py", "jobs/b.py"],
         "files": [{"path": "main.py", "reasons": []}], "further": []},
        {"entry_points": "x", "sign": "", "roots": [], "files": [], "further": []}],
        "total": 5, "truncated": true},
      "decisions": {"files": [
        {"path": "docs/adr/2.md", "reasons": [{"kind": "rank", "text": "1 of 3", "count": 3,
          "at": [{"path": "docs/adr/2.md", "line": 7, "name": "n"}]}]},
        {"path": "odd\tname.md", "reasons": [
          {"kind": "rank", "text": "2\n of 3", "count": 0, "at": []}]}],
        "further": [{"path": "NOTES.md", "reasons": [
          {"kind": "named", "text": "called so", "count": 0, "at": []}]}],
        "total": 3, "truncated": true}})"));
  EXPECT_EQ(json::parse(pages_as_json(about_r(), {}))["pages"], json::object());
}

TEST(Edges, HaveThreeForms) {
  const std::vector<FoundEdge> edges{{"a.py", "b\t.py", 3, 1}, {"a.py", "x/c.py", 1.5, 2}};
  EXPECT_EQ(edges_as_tsv(edges), "a.py\t\"b\\t.py\"\t3\na.py\tx/c.py\t1.5\n");
  EXPECT_EQ(edges_as_dot(edges, true),
            "digraph edges {\n  rankdir=LR;\n  node [shape=box];\n"
            "  \"a.py\" -> \"\\\"b\\\\t.py\\\"\" [weight=3, label=3];\n"
            "  \"a.py\" -> \"x/c.py\" [weight=1.5, label=1.5];\n}\n");
  EXPECT_THAT(edges_as_dot(edges, false), HasSubstr("  subgraph cluster_1 {\n    label=\"x\";\n"
                                                    "    \"x/c.py\" [label=\"c.py\"];\n  }\n"));
  EXPECT_EQ(json::parse(edges_as_json(about_r(), edges))["edges"], json::parse(R"([
      {"source": "a.py", "target": "b\t.py", "weight": 3, "edges": 1},
      {"source": "a.py", "target": "x/c.py", "weight": 1.5, "edges": 2}])"));
}

TEST(Symbols, HaveTwoForms) {
  const std::vector<FoundSymbol> symbols{{"a.py", SymbolKind::kClass, "A", "class A(\"B\"):", 3}};
  EXPECT_EQ(symbols_as_tsv(symbols), "a.py\tclass\tA\t\"class A(\\\"B\\\"):\"\n");
  EXPECT_EQ(json::parse(symbols_as_json(about_r(), symbols))["symbols"], json::parse(R"([
      {"path": "a.py", "kind": "class", "name": "A", "signature": "class A(\"B\"):", "line": 3}])"));
}

TEST(Suggestions, AreNearOrNone) {
  const std::vector<std::string> names{"pages", "edges", "symbols", "data_models"};
  const std::vector<std::pair<std::string, std::string>> cases{
      {"simbols", "symbols"}, {"edgse", "edges"}, {"data", "data_models"},
      {"page", "pages"},      {"x", ""},          {"", ""},
      {"cache", ""},          {"pagers", "pages"}};
  for (const auto& [word, near] : cases) EXPECT_EQ(nearest(word, names), near) << word;
}

}  // namespace
}  // namespace kestrix::program
