#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> decisions(const std::vector<std::string>& documents) {
  return decision_docs(documents, documents.size());
}

TEST(DecisionDocs, TakesDesignDocuments) {
  for (const auto* path : {
           "docs/adr/0007-queues.md",
           "docs/ADR/adr-007-queues.rst",
           "adrs/use-queues.adoc",
           "docs/decisions/20240131-queues.md",
           "docs/decisions/2024-01-31-queues.md",
           "rfcs/0012-template-engine.md",
           "proposals/storage.txt",
           "docs/design/storage.md",
           "docs/architecture/overview.md",
           "enhancements/storage.org",
           "peps/pep-0008.rst",
           "sep/sep-021.rst",
           "keps/sig-node/1287-resize/README.md",
           "DESIGN.md",
           "docs/architecture.rst",
           "Decisions.txt",
           "notes/adr-0003-cache.md",
       }) {
    EXPECT_THAT(decisions({path}), ElementsAre(path));
  }
}

TEST(DecisionDocs, LeavesOutTheRest) {
  EXPECT_THAT(decisions({
                  "checkers/design_analysis.py",
                  "docs/adr/tool.py",
                  "docs/adr/README.md",
                  "docs/adr/index.rst",
                  "docs/adr/template.md",
                  "docs/adr/0000-template.md",
                  "keps/NNNN-kep-template/README.md",
                  "docs/adr/templates/long.md",
                  "docs/rfc/rfc2616.txt",
                  "tests/fixtures/adr/0001-a.md",
                  "vendor/lib/docs/adr/0001-a.md",
                  "docs/01-introduction.md",
                  "docs/designer/a.md",
                  "docs/redesign.md",
                  "changes/1234-author.md",
                  "_posts/2024-01-31-news.md",
                  "README.md",
                  "",
              }),
              IsEmpty());
}

TEST(DecisionDocs, OrdersEntriesBeforeOverviewsNewestFirst) {
  std::vector<std::string> documents{"docs/adr/20240131-queues.md",
                                     "docs/adr/2023-05-01-cache.md",
                                     "docs/adr/0012-store.md",
                                     "docs/adr/0003-b.md",
                                     "docs/adr/0003-c.md",
                                     "docs/adr/unnumbered.md",
                                     "ARCHITECTURE.md",
                                     "docs/design.md",
                                     "docs/design/ui.md"};
  const auto expected = documents;
  std::mt19937 random(7);  // NOLINT(cert-msc51-cpp): the same shuffles in every run
  for (int i = 0; i < 20; ++i) {
    std::ranges::shuffle(documents, random);
    EXPECT_EQ(decisions(documents), expected);
  }
}

TEST(DecisionDocs, ASeriesOfPaddedNumbersNeedsNoFolderName) {
  EXPECT_THAT(decisions({"text/0001-a.md", "text/0002-b.md", "text/0003-c.md", "text/3668-d.md",
                         "text/notes.md", "docs/0001-start.md", "0000-template.md"}),
              ElementsAre("text/3668-d.md", "text/0003-c.md", "text/0002-b.md", "text/0001-a.md"));
}

TEST(DecisionDocs, CutsToTheLimitAndListsAPathOnce) {
  EXPECT_THAT(decision_docs({"adr/1-a.md", "adr/2-b.md", "adr/2-b.md"}, 5),
              ElementsAre("adr/2-b.md", "adr/1-a.md"));
  EXPECT_THAT(decision_docs({"adr/1-a.md", "adr/2-b.md"}, 1), ElementsAre("adr/2-b.md"));
  EXPECT_THAT(decision_docs({"adr/1-a.md"}, 0), IsEmpty());
}

}  // namespace
}  // namespace kestrix
