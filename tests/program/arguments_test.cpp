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

std::vector<std::string_view> names_of(const PagesCommand& command) {
  std::vector<std::string_view> names;
  for (const Page* page : command.pages) names.push_back(page->name);
  return names;
}

TEST(Arguments, PagesHaveDefaults) {
  for (const Strings& none : {Strings{}, Strings{"pages"}}) {
    EXPECT_EQ(parsed<PagesCommand>(none).pages.size(), kPages.size());
  }
  const auto command = parsed<PagesCommand>({"pages"});
  EXPECT_EQ(command.common.repository, ".");
  EXPECT_FALSE(command.common.index);
  EXPECT_EQ(command.common.threads, 0U);
  EXPECT_FALSE(command.common.quiet);
  EXPECT_TRUE(command.common.progress);
  EXPECT_EQ(command.pages.size(), kPages.size());
  EXPECT_EQ(command.format, Format::kText);
}

TEST(Arguments, PagesAreAskedForByNameAndComeInTheirOwnOrder) {
  const auto command = parsed<PagesCommand>({"pages", "--page", "decisions", "--page=errors",
                                             "repo", "--page", "errors", "--format", "json"});
  EXPECT_THAT(names_of(command), ElementsAre("errors", "decisions"));
  EXPECT_EQ(command.common.repository, "repo");
  EXPECT_EQ(command.format, Format::kJson);
}

TEST(Arguments, ARepositoryAloneAsksForItsPages) {
  EXPECT_EQ(parsed<PagesCommand>({"src/app"}).common.repository, "src/app");
  EXPECT_THAT(names_of(parsed<PagesCommand>({"--page", "flows,errors", "-j", "2", "a/b"})),
              ElementsAre("errors", "flows"));
  const auto command = parsed<PagesCommand>({".", "--page", "errors"});
  EXPECT_EQ(command.common.repository, ".");
  EXPECT_THAT(names_of(command), ElementsAre("errors"));
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
  const auto before = parsed<EdgesCommand>({"-q", "-j", "3", "--index=edges", "edges", "pages"});
  EXPECT_EQ(before.common.repository, "pages");
  EXPECT_EQ(before.common.index, "edges");
  EXPECT_EQ(before.common.threads, 3U);
  EXPECT_TRUE(before.common.quiet);
}

TEST(Arguments, GlobsKeepTheirOrder) {
  const auto wishes =
      parsed<IndexCommand>({"index", "--exclude", "a/**", "--include", "a/b", "--exclude=c"})
          .common.wishes;
  EXPECT_THAT(wishes,
              ElementsAre(PathWish{"a/**", false, "--exclude"}, PathWish{"a/b", true, "--include"},
                          PathWish{"c", false, "--exclude"}));
}

TEST(Arguments, EdgesAreFilteredAndSummed) {
  const auto command = parsed<EdgesCommand>({"edges", "--to", "a", "--to", "b/*", "--from", "c",
                                             "--by", "folder:2", "--path", "x", "y", "repo"});
  EXPECT_THAT(command.request.query.to, ElementsAre("a", "b/*"));
  EXPECT_THAT(command.request.query.from, ElementsAre("c"));
  EXPECT_THAT(command.request.path, ElementsAre("x", "y"));
  EXPECT_EQ(command.request.folders, 2U);
  EXPECT_EQ(command.common.repository, "repo");
  EXPECT_EQ(parsed<EdgesCommand>({"edges", "--by", "folder"}).request.folders, 0U);
}

TEST(Arguments, WhyTakesThreeOrTwo) {
  const auto command = parsed<WhyCommand>({"why", ".", "errors", "a.py"});
  EXPECT_EQ(command.page->name, "errors");
  EXPECT_EQ(command.file, "a.py");
  const auto here = parsed<WhyCommand>({"-j", "2", "why", "errors", "--format", "json", "a.py"});
  EXPECT_EQ(here.common.repository, ".");
  EXPECT_EQ(here.file, "a.py");
}

TEST(Arguments, SymbolsAndTopicTakeTheirOwn) {
  const auto symbols = parsed<SymbolsCommand>(
      {"symbols", "--kind", "interface", "--kind", "class,constant", "--name", "*Error"});
  EXPECT_THAT(symbols.kinds,
              ElementsAre(SymbolKind::kInterface, SymbolKind::kClass, SymbolKind::kConstant));
  EXPECT_EQ(symbols.name, "*Error");
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
      {{"simbols", "--kind", "class"},
       "simbols is neither a subcommand nor a directory; did you mean symbols?"},
      {{"src/app", "--pgae"}, "unexpected argument: --pgae; did you mean --page?"},
      {{"--pgae", "errors"}, "--pgae"},
      {{"index", "a", "b", "--oops", "c"}, "unexpected arguments: b --oops c"},
      {{"help", "edgse"}, "did you mean edges?"},
      {{"symbols", "--kind", "clas"}, "did you mean class?"},
      {{"edges", "--by", "file"}, "file is neither folder nor folder:DEPTH"},
      {{"edges", "--path", "a"}, "--path"},
      {{"cache", "burn"}, "burn is none of list, clean"},
      {{"cache", "clean", "--older-than", "soon"}, "soon is no number of days"},
      {{"why", ".", "errors"}, "FILE"},
      {{"why", ".", "eror", "f"}, "did you mean errors?"},
      {{"topic", "title", "file", "--oops"}, "--oops"},
      {{"pages", "a", "b"}, "b"},
      {{"pages", "--pgae"}, "--pgae"},
      {{"pages", "--page", "error"},
       "error is none of data_models, configuration, errors, flows, extending, examples, "
       "decisions"},
      {{"pages", "--page"}, "--page"},
      {{"pages", "--format", "dot"}, "dot is none of text, json, tsv"},
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
  EXPECT_EQ(parsed<Information>({"help", "pages"}).text,
            parsed<Information>({"pages", "--help"}).text);
  EXPECT_EQ(parsed<Information>({"help"}).text, parsed<Information>({"-h"}).text);
  EXPECT_THAT(parsed<Information>({"--version"}).text, HasSubstr("page-sources "));
  EXPECT_THAT(parsed<Information>({"-V"}).text, HasSubstr("page-sources "));
}

}  // namespace
}  // namespace kestrix::program
