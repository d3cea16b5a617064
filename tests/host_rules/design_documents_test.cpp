#include "kestrix/host/decisions/design_documents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "kestrix/host/decisions/document_text.h"
#include "kestrix/host/wiki_generator.h"
#include "tests/host_rules/answered_repository.h"
#include "tests/index/index_fixture.h"

namespace kestrix {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Prose of some length with two headings; `more` is woven in.
std::string essay(std::string_view more, int paragraphs = 12) {
  std::string text = "# Why it is so\n\n";
  for (int i = 0; i < paragraphs; ++i) {
    text +=
        "The queue holds what was asked for until a worker has time to look at it again.\n"
        "Nothing is lost when a worker ends early, for the entry stays where it was.\n\n";
  }
  return text + "## What follows\n\n" + std::string(more) + "\n";
}

class DesignDocuments : public testing::Test {
 protected:
  void SetUp() override {
    for (const auto* name : {"order", "cart", "till", "shop"}) {
      repository_.write(fmt::format("src/{}.py", name),
                        fmt::format("class Big{}Book: pass\n", name));
    }
  }

  void write(std::string_view path, std::string_view text) const { repository_.write(path, text); }

  std::vector<Pick> picks() const {
    const auto opened = repository_.refreshed();
    const DocumentEvidence evidence(*opened.index);
    std::vector<std::string> documents;
    for (const auto& file : opened.index->files()) {
      if (file.document) documents.emplace_back(file.path);
    }
    return rank_design_documents(documents, &evidence);
  }

  std::vector<std::string> paths() const {
    std::vector<std::string> list;
    for (auto& pick : picks()) list.push_back(pick.path);
    return list;
  }

 private:
  index::IndexFixture repository_;
};

const std::string kNamesCode = "src/order.py, src/cart.py, `till.py` and BigshopBook.";

TEST_F(DesignDocuments, TakesProseThatNamesTheCode) {
  write("docs/queue.md", essay(kNamesCode));
  write("docs/manual.md", essay("Nothing of the code."));
  const auto found = picks();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].path, "docs/queue.md");
  EXPECT_EQ(found[0].reasons[0].kind, "design_document");
  EXPECT_EQ(found[0].reasons[0].text, "prose about the code, names 3 source files, 1 type");
  EXPECT_EQ(found[0].reasons[0].count, 4U);
}

TEST_F(DesignDocuments, LeavesOutWhatInstructsOrReports) {
  const std::string base = essay(kNamesCode);
  write("docs/howto.md", base + "## 1. A\n## 2. B\n## 3. C\n");
  write("docs/start.md", base + "```\nmake\nmake test\nnpm i\n```\n");
  write(
      "docs/code.md", base + "```\n" + std::string(200, '\n') + [] {
        std::string code;
        for (int i = 0; i < 60; ++i) code += "x = 1\n";
        return code;
      }() + "```\n");
  std::string you = base;
  for (int i = 0; i < 20; ++i) you += "You do your part. ";
  write("docs/guide.md", you);
  std::string links = base;
  for (int i = 0; i < 40; ++i) links += "https://a.example ";
  write("docs/links.md", links);
  write("CONTRIBUTING.md", base);
  write("docs/v2-upgrade.md", base);
  write("docs/releases/v2.md", base);
  write(".github/notes.md", base);
  write("tests/notes.md", base);
  write("vendor/lib/notes.md", base);
  write("README.md", base);
  EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(DesignDocuments, TakesWhatTheRootPageOrTheCodePointsTo) {
  write("docs/life.md", essay("", 16));
  write("docs/other.md", essay("Another.", 16));
  write("docs/dev/busy.md", essay("Busy."));
  write("src/queue.py", "# see docs/dev/busy.md\n");
  write("README.md", "[life](docs/life.md)\n");
  const auto found = picks();
  EXPECT_THAT(paths(), ElementsAre("docs/dev/busy.md", "docs/life.md"));
  EXPECT_THAT(found[0].reasons[0].text, HasSubstr("named in 1 source file"));
  EXPECT_THAT(found[1].reasons[0].text, HasSubstr("linked from README.md"));
  EXPECT_THAT(found[1].reasons[0].at, Contains(Place{"README.md", 0, ""}));
}

TEST_F(DesignDocuments, ListsOneOfSeveralCopies) {
  write("docs/queue.md", essay(kNamesCode));
  write("docs-next/queue.md", essay(kNamesCode));
  EXPECT_THAT(paths(), ElementsAre("docs/queue.md"));
}

TEST_F(DesignDocuments, KnowsASeriesByTheFormOfItsTexts) {
  const auto entry = [](std::string_view title) {
    return fmt::format("# {}\n\n## Context\n\nx\n\n## Decision\n\nx\n", title);
  };
  write("notes/1-a.md", entry("A"));
  write("notes/2-b.md", entry("B"));
  write("notes/10-c.md", entry("C"));
  write("chapters/1-a.md", "# A\n\nx\n");
  write("chapters/2-b.md", "# B\n\nx\n");
  write("chapters/3-c.md", "# C\n\nx\n");
  write("docs/4.0-upgrade.md", entry("4"));
  write("docs/5.0-upgrade.md", entry("5"));
  write("docs/6.0-upgrade.md", entry("6"));
  const auto found = picks();
  EXPECT_THAT(paths(), ElementsAre("notes/10-c.md", "notes/2-b.md", "notes/1-a.md"));
  EXPECT_EQ(found[0].reasons[0].kind, "decision_record");
  EXPECT_EQ(found[0].reasons[0].text, "10, one of 3 entries");
}

// By its headings, in any of the languages that they are known in, and wherever it lies; but not
// what entries and issues are begun from, nor a manual's page with one such heading.
TEST_F(DesignDocuments, KnowsAProposalByItsHeadings) {
  const std::string english = "# Queues\n\n## Goals\n\nNone is lost.\n\n## Non-Goals\n\nSpeed.\n";
  write("docs/queues/README.md", english);
  write("docs/ledger.md", "# Ledger\n\n## \u80cc\u666f\n\nA B C D E\n\n## \u76ee\u6807\n\nF\n");
  write(".github/ISSUE_TEMPLATE/idea.md", english + "Issue.\n");
  write("docs/proposal-template.md", english + "Template.\n");
  write("README.md", english + "Root.\n");
  write("tests/plan.md", english + "Tests.\n");
  write("docs/manual.md",
        "# Manual\n\n## Goals\n\nNone is lost, ever and ever.\n\n## Use\n\nIt.\n");
  const auto found = picks();
  EXPECT_THAT(paths(), ElementsAre("docs/ledger.md", "docs/queues/README.md"));
  EXPECT_EQ(found[0].reasons[0].text, "in the form of a proposal");
}

// An entry may be a folder: its design tells, not what else lies in it; and chapters are none.
TEST_F(DesignDocuments, KnowsAnEntryByItsFolder) {
  for (const std::string day : {"2024-01-09", "2024-02-01", "2023-12-30"}) {
    write("changes/" + day + "-thing/design.md", "# Thing of " + day + "\n\nIt is so and so.\n");
    write("changes/" + day + "-thing/tasks.md", "# Tasks of " + day + "\n\n- do so and so\n");
    write("course/" + day.substr(5, 2) + "-chapter/README.md", "# Chapter\n\nRead " + day + ".\n");
  }
  const auto found = picks();
  EXPECT_THAT(paths(), ElementsAre("changes/2024-02-01-thing/design.md",
                                   "changes/2024-01-09-thing/design.md",
                                   "changes/2023-12-30-thing/design.md"));
  EXPECT_EQ(found[0].reasons[0].text, "2024-02-01, one of 3 entries");
}

TEST_F(DesignDocuments, AreInForceOnOneThreadForOneScope) {
  write("docs/queue.md", essay(kNamesCode));
  const index::IndexFixture other;
  EXPECT_EQ(DocumentEvidenceScope::current(), nullptr);
  other.write("a.py", "");
  const auto opened = other.refreshed();
  const DocumentEvidence evidence(*opened.index);
  {
    const DocumentEvidenceScope scope(evidence);
    EXPECT_EQ(DocumentEvidenceScope::current(), &evidence);
    std::thread([] { EXPECT_EQ(DocumentEvidenceScope::current(), nullptr); }).join();
  }
  EXPECT_EQ(DocumentEvidenceScope::current(), nullptr);
}

TEST(Reasons, AreCountedInProse) {
  const std::pair<std::string_view, std::size_t> cases[] = {
      {"", 0},
      {"It is so because it was.", 1},
      {"Because of this, rather\nthan that; a trade-off. Why not?", 4},
      {"A trade, and off it goes. Other than this, of instead.", 0},
      {"```\n// because of it\n```\nTherefore.", 1},
      {"reasonable, becauses, whyever", 0},
  };
  for (const auto& [text, count] : cases) EXPECT_EQ(count_reasons(text), count) << text;
}

// Pages on which reasons are given, code is named or that code names; never pages that show or tell
// what to do. The more designs there are, the fewer are added.
TEST(HintingDocuments, PreferReasonsToInstructions) {
  const auto page = [](std::string_view line) {
    std::string text = "# Page\n\n";
    for (int i = 0; i < 20; ++i) text.append(line).append(std::to_string(i)).append(".\n");
    return text;
  };
  const std::string plain =
      page("The queue holds what was asked for until somebody comes in year ");
  AnsweredRepository::Files files{
      {"src/queue.py", "# see guide/named.md\nclass Queue:\n    pass\n"},
      {"guide/weighed.md", page("It waits rather than fails because of the trade-off of rule ")},
      {"guide/named.md", plain + "Named.\n"},
      {"guide/plain.md", plain},
      {"guide/remark.md", plain + "Because.\n"},
      {"guide/told.md", page("You do your part because your queue needs you, rather than rule ")},
      {"guide/shown.md", "# Shown\n\n```\n" + page("because(rather, than, ") + "```\n" + plain}};
  EXPECT_THAT(paths_of(decisions_answer(AnsweredRepository(files).generator()).further),
              ElementsAre("guide/weighed.md", "guide/named.md"));
  for (const std::string number : {"1", "2", "3", "4"}) {
    files.emplace_back("docs/adr/000" + number + "-it.md", "# It " + number + "\n\nIt is so.\n");
  }
  EXPECT_THAT(paths_of(decisions_answer(AnsweredRepository(files).generator()).further),
              ElementsAre("guide/weighed.md"));
}

// The root page of a part tells of the code beside it; a manual's page that names the same does
// not.
TEST(HintingDocuments, AreFilledUpWithProseBesideTheCodeThatItNames) {
  std::string prose =
      "# Parts\n\nThe `Engine` asks the `Ledger` for what it owes.\n\n## Why two\n\n";
  for (int line = 0; line < 40; ++line) prose += "One of them keeps what the other forgets.\n";
  const AnsweredRepository repository({{"parts/engine.py", "class Engine:\n    pass\n"},
                                       {"parts/ledger.py", "class Ledger:\n    pass\n"},
                                       {"parts/README.md", prose},
                                       {"guide/upgrading.md", prose + "Again.\n"}});
  const PageAnswer answer = decisions_answer(repository.generator());
  EXPECT_THAT(answer.files, testing::IsEmpty());
  EXPECT_THAT(paths_of(answer.further), testing::ElementsAre("parts/README.md"));
  EXPECT_EQ(reason_of(answer.further, "parts/README.md", "design_document"),
            "prose about the code beside it that gives 1 reason, names 2 types");
}

}  // namespace
}  // namespace kestrix
