#include "kestrix/formats/scalars.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace kestrix::index {
namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

// "path/of/keys = value @line"
std::vector<std::string> scalars_of(Format format, std::string_view text) {
  std::vector<std::string> found;
  for_each_scalar(format, text, [&](const Scalar& scalar) {
    found.push_back(
        fmt::format("{} = {} @{}", fmt::join(scalar.path, "/"), scalar.value, scalar.line));
  });
  return found;
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

struct Case {
  Format format;
  std::string text;
  std::vector<std::string> scalars;
};

void check(const std::vector<Case>& cases) {
  for (const Case& each : cases) {
    EXPECT_THAT(scalars_of(each.format, each.text), ElementsAreArray(each.scalars)) << each.text;
  }
}

TEST(Scalars, HaveTheirPathAndLine) {
  check({
      {Format::kJson,
       "\xEF\xBB\xBF{ // one\n \"a\": {\"b\": [1,\n -2.50\n, true, null, [], \"x\\ny\"]},\n"
       "/* two\n lines */ \"a\": \"z\",\n}",
       {"a/b/0 = 1 @2", "a/b/1 = -2.50 @3", "a/b/2 = true @4", "a/b/3 =  @4", "a/b/5 = x\ny @4",
        "a = z @6"}},
      {Format::kJson, "7\n", {" = 7 @1"}},
      {Format::kYaml,
       "# c\na: 1\nb:\n  - x\n  - {c: 'y', d: [z]}\n  -\n\"e f\": |\n  two\n  lines\n---\na: 2\n",
       {"a = 1 @2", "b/0 = x @4", "b/1/c = y @5", "b/1/d/0 = z @5", "b/2 =  @7",
        "e f = two\nlines\n @7", "a = 2 @11"}},
      {Format::kYaml,
       "a: &x {b: 1}\nc: *x\n<<: *x\n*x : d\n? [k, l]\n: m\nn: 2\n",
       {"a/b = 1 @1", "* = d @4", "?/0 = k @5", "?/1 = l @5", "? = m @6", "n = 2 @7"}},
      {Format::kToml,
       "a.b = 'x' # c\n[\"q.r\".s]\nt = [1, 2.5,\n true]\n[[u]]\nv = 2020-01-02\n[[u]]\n"
       "w = {x = \"\"\"\ny\"\"\"}\n",
       {"a/b = x @1", "q.r/s/t/0 = 1 @3", "q.r/s/t/1 = 2.5 @3", "q.r/s/t/2 = true @4",
        "u/0/v = 2020-01-02 @6", "u/1/w/x = y @8"}},
      {Format::kXml,
       "<?xml version=\"1.0\"?>\n<a b='1'\n c=\"&lt;2\">\n<!-- <d e=\"3\"/> -->\n<d>t</d><d> <f/>\n"
       "<![CDATA[g]]></d></a>",
       {"a/@b = 1 @2", "a/@c = <2 @3", "a/d = t @5", "a/d = g @6"}},
      {Format::kIni,
       "; c\na = 1\n[s t]\r\nb: \"x = y\"\r\n# d\n[u]\nalone\n",
       {"a = 1 @2", "s t/b = x = y @4", "u/alone =  @7"}},
      {Format::kProperties,
       "! c\na.b=1\nc\\:d : x \\\n  y\n e f\nempty\n",
       {"a.b = 1 @2", "c\\:d = x y @3", "e = f @5", "empty =  @6"}},
      {Format::kEnv,
       "# c\nexport A='x y'\nB=\"\"\nC=a=b\n",
       {"A = x y @2", "B =  @3", "C = a=b @4"}},
  });
}

TEST(Scalars, StandBeforeDamage) {
  check({
      {Format::kJson, "{\"a\": 1, \"b\": x, \"c\": 2}", {"a = 1 @1"}},
      {Format::kYaml, "a: 1\nb: [2\nc: }\n", {"a = 1 @1", "b/0 = 2 c @2"}},
      {Format::kToml, "a = 1\nb = {{ x }}\nc = 2\n", {"a = 1 @1"}},
      {Format::kToml, "a = [", {}},
      {Format::kXml, "<a b='1'><c d='2'></e>", {"a/@b = 1 @1", "a/c/@d = 2 @1"}},
  });
  for (const auto format : {Format::kJson, Format::kYaml, Format::kToml, Format::kXml, Format::kIni,
                            Format::kProperties, Format::kEnv}) {
    for (const std::string text :
         {"",  "\n", "\xFF\xFE", "\"", "\\", "[", "{", "<", "]",  "}",  ">",
          "=", "&",  "*",        "*a", "&a", "'", "!", "%", "- ", "? ", ": "}) {
      scalars_of(format, text);
    }
  }
}

// Far deeper than a call for each level could go.
TEST(Scalars, AreNotReadWhereTheyAreNestedTooDeep) {
  constexpr std::size_t kDeep = 200'000;
  EXPECT_THAT(scalars_of(Format::kJson, repeated("[", kDeep) + repeated("]", kDeep)), IsEmpty());
  for (const char* piece : {"[", "{a: ", "- ", "? ", "&a [", "{"}) {
    EXPECT_THAT(scalars_of(Format::kYaml, repeated(piece, kDeep)), IsEmpty()) << piece;
  }
  for (const std::string& text :
       {"a = " + repeated("[", kDeep), "a = " + repeated("{b = ", kDeep),
        repeated("a.", kDeep) + "b = 1", "[" + repeated("a.", kDeep) + "b]\nc = 1",
        "[" + repeated("'a' . ", kDeep) + "b]\nc = 1",
        "x = " + repeated("{" + repeated("a.", 150) + "b = ", 150)}) {
    EXPECT_THAT(scalars_of(Format::kToml, text), IsEmpty()) << text.substr(0, 40);
  }
  const auto xml = scalars_of(Format::kXml, repeated("<a b='1'>", 20'000));
  EXPECT_EQ(xml.size(), 200U);
}

TEST(Scalars, StayAsManyAsTheTextHolds) {
  std::string yaml = "a0: &a0 [x, x]\n";
  for (int i = 1; i < 60; ++i) yaml += fmt::format("a{}: &a{} [*a{}, *a{}]\n", i, i, i - 1, i - 1);
  EXPECT_EQ(scalars_of(Format::kYaml, yaml).size(), 2U);
  const std::string xml =
      "<!DOCTYPE a [<!ENTITY b 'xx'><!ENTITY c '&b;&b;'><!ENTITY d '&c;&c;'>]><a e='&d;'/>";
  EXPECT_THAT(scalars_of(Format::kXml, xml), ElementsAreArray({"a/@e = &d; @1"}));
  constexpr std::size_t kTooMany = std::size_t{1} << 20;
  EXPECT_THAT(scalars_of(Format::kToml, "a = [" + repeated("1,", kTooMany) + "]"), IsEmpty());
  EXPECT_THAT(scalars_of(Format::kJson, "[" + repeated("1,", kTooMany) + "1]"), IsEmpty());
  EXPECT_THAT(scalars_of(Format::kXml, repeated("<a/>", kTooMany + 1)), IsEmpty());
  EXPECT_LE(scalars_of(Format::kYaml, "[" + repeated("1,", kTooMany + 9) + "]").size(), kTooMany);
}

// A request to stop comes as an exception.
TEST(Scalars, LetPassWhatTheVisitorThrows) {
  struct Stop {};
  for (const auto& [format, text] : {std::pair{Format::kJson, "[1]"},
                                     {Format::kYaml, "[1]"},
                                     {Format::kToml, "a=1"},
                                     {Format::kXml, "<a>1</a>"},
                                     {Format::kIni, "a=1"}}) {
    EXPECT_THROW(for_each_scalar(format, text, [](const Scalar&) { throw Stop{}; }), Stop);
  }
}

TEST(Format, IsKnownByTheName) {
  EXPECT_EQ(format_of("a/b.YML"), Format::kYaml);
  EXPECT_EQ(format_of("Directory.Build.props"), Format::kXml);
  EXPECT_EQ(format_of("a/.env.local"), Format::kEnv);
  EXPECT_EQ(format_of(".env"), Format::kEnv);
  EXPECT_EQ(format_of("a.toml/b"), std::nullopt);
}

}  // namespace
}  // namespace kestrix::index
