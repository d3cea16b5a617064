#include "apps/page_sources/arguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

namespace kestrix::program {
namespace {

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::HasSubstr;

template <class Wanted>
Wanted parsed(const Strings& arguments) {
  Command command = parse(arguments);
  if (const auto* wrong = std::get_if<WrongUsage>(&command)) ADD_FAILURE() << wrong->message;
  return std::get<Wanted>(command);
}

TEST(Arguments, PagesHaveDefaults) {
  const auto command = parsed<PagesCommand>({"pages"});
  EXPECT_EQ(command.common.repository, ".");
  EXPECT_FALSE(command.common.index);
  EXPECT_EQ(command.common.threads, 0U);
  EXPECT_FALSE(command.common.quiet);
  EXPECT_TRUE(command.common.progress);
  EXPECT_EQ(command.pages.size(), kPageNames.size());
  EXPECT_EQ(command.format, Format::kText);
}

TEST(Arguments, PagesAreAskedForByNameAndComeInTheirOwnOrder) {
  const auto command = parsed<PagesCommand>({"pages", "--page", "decisions", "--page=errors",
                                             "repo", "--page", "errors", "--format", "json"});
  EXPECT_THAT(command.pages, ElementsAre(PageName::kErrors, PageName::kDecisions));
  EXPECT_EQ(command.common.repository, "repo");
  EXPECT_EQ(command.format, Format::kJson);
}

TEST(Arguments, ARepositoryAloneAsksForItsPages) {
  EXPECT_EQ(parsed<PagesCommand>({"src/app"}).common.repository, "src/app");
  const auto command = parsed<PagesCommand>({".", "--page", "errors"});
  EXPECT_EQ(command.common.repository, ".");
  EXPECT_THAT(command.pages, ElementsAre(PageName::kErrors));
}

TEST(Arguments, EachGlobIsOneClass) {
  const auto command =
      parsed<PagesCommand>({"pages", "--entry-points", "a/*", "--entry-points", "b", "repo"});
  EXPECT_THAT(command.entry_points, ElementsAre("a/*", "b"));
  EXPECT_EQ(command.common.repository, "repo");
}

TEST(Arguments, CommonOptionsGoWithEverySubcommandThatReadsARepository) {
  const Strings options{"repo", "--index", "i.db", "--threads", "3", "--quiet", "--no-progress"};
  const auto with = [&](const char* name) {
    Strings all{name};
    all.insert(all.end(), options.begin(), options.end());
    return all;
  };
  for (const CommonOptions& common :
       {parsed<PagesCommand>(with("pages")).common, parsed<EdgesCommand>(with("edges")).common,
        parsed<SymbolsCommand>(with("symbols")).common,
        parsed<IndexCommand>(with("index")).common}) {
    EXPECT_EQ(common.repository, "repo");
    EXPECT_EQ(common.index, "i.db");
    EXPECT_EQ(common.threads, 3U);
    EXPECT_TRUE(common.quiet);
    EXPECT_FALSE(common.progress);
  }
}

TEST(Arguments, SymbolsAndTopicTakeTheirOwn) {
  const auto symbols =
      parsed<SymbolsCommand>({"symbols", "--kind", "interface", "--name", "%Error"});
  EXPECT_EQ(symbols.kind, SymbolKind::kInterface);
  EXPECT_EQ(symbols.name, "%Error");
  const auto topic = parsed<TopicCommand>({"topic", "A title", "a.py", "--", "-b.py"});
  EXPECT_EQ(topic.title, "A title");
  EXPECT_THAT(topic.files, ElementsAre("a.py", "-b.py"));
}

TEST(Arguments, WrongOnesAreNamedInOneLine) {
  struct Case {
    Strings arguments;
    std::string named;
  };
  const std::vector<Case> cases{
      {{}, "subcommand"},
      {{"simbols", "--kind", "class"}, "simbols is no subcommand"},
      {{"src/app", "--pgae"}, "--pgae"},
      {{"topic", "title", "file", "--oops"}, "--oops"},
      {{"pages", "a", "b"}, "b"},
      {{"pages", "--pgae"}, "--pgae"},
      {{"pages", "--page", "error"},
       "error is none of data_models, configuration, errors, flows, extending, examples, "
       "decisions"},
      {{"pages", "--page"}, "--page"},
      {{"pages", "--format", "dot"}, "dot is none of text, json"},
      {{"pages", "--entry-points", "a["}, "\"a[\" is malformed"},
      {{"edges", "--format", "text"}, "text is none of tsv, json, dot"},
      {{"edges", "--page", "errors"}, "--page"},
      {{"symbols", "--kind", "function"}, "function is none of class, interface"},
      {{"index", "--threads", "0"}, "--threads"},
      {{"index", "--threads", "-1"}, "--threads"},
      {{"index", "--threads", "many"}, "many"},
      {{"topic"}, "TITLE"},
      {{"topic", "title"}, "FILE"},
      {{"index", "a\nb", "c\nd"}, "c\\nd"},
  };
  for (const Case& each : cases) {
    const Command command = parse(each.arguments);
    ASSERT_TRUE(std::holds_alternative<WrongUsage>(command)) << each.named;
    EXPECT_THAT(std::get<WrongUsage>(command).message, HasSubstr(each.named));
    EXPECT_EQ(std::get<WrongUsage>(command).message.find('\n'), std::string::npos);
  }
}

TEST(Arguments, HelpAndVersionAreInformation) {
  EXPECT_THAT(parsed<Information>({"--help"}).text, HasSubstr("Examples:"));
  EXPECT_THAT(parsed<Information>({"pages", "--help"}).text, HasSubstr("--entry-points"));
  EXPECT_THAT(parsed<Information>({"--version"}).text, HasSubstr("page-sources "));
}

}  // namespace
}  // namespace kestrix::program
