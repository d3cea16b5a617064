// The answers of the pages over a small repository: what the detectors return, and why.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "kestrix/host/components.h"
#include "kestrix/host/pages.h"
#include "kestrix/index/refresh/indexer.h"
#include "tests/index/scratch.h"

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Strings = std::vector<std::string>;

class PageAnswers : public testing::Test {
 protected:
  PageAnswers() {
    write("app/errors.py",
          "class AppError(Exception): pass\n\n\nclass LateError(AppError): pass\n");
    write("app/store.py",
          "from app.errors import LateError\nclass StoreException(Exception): pass\nLateError()\n");
    write("app/settings.py", "DEBUG = True\n");
    write("app/models.py",
          "from dataclasses import dataclass\n@dataclass\nclass A:\n  a: int\n"
          "@dataclass\nclass B:\n  b: int\n");
    write("app/plugins.py",
          "import abc\nPLUGINS = []\nclass Plugin(abc.ABC):\n  @abc.abstractmethod\n"
          "  def run(self): ...\n");
    write("app/main.py",
          "from app.plugins import PLUGINS\nfrom app.jobs import a, b, c\n"
          "PLUGINS.append(a.run)\nb.run(); c.run()\n");
    for (const std::string job : {"a", "b", "c"}) {
      write("app/jobs/" + job + ".py", "from app.models import A\ndef run(): return A(1)\n");
    }
    write("tests/helper.py",
          "from app.store import StoreException\nclass Stop(StoreException): pass\n");
    write("tests/test_one.py",
          "from tests.helper import Stop\nfrom app.models import A\nStop; A\n");
    write("tests/test_two.py", "from tests.helper import Stop\nStop\n");
    write("docs/adr/0001-first.md", "# First\n");
    write("docs/adr/0002-second.md", "# Second\n");
    index::IndexOptions options;
    options.root = scratch_ / "repo";
    options.file = scratch_ / "index.sqlite";
    index_ = index::refresh_and_open(options).index;
    generator_.emplace(*index_, options.root);
  }

  const WikiGenerator& generator() const { return *generator_; }

  // The line of a file of the repository, counted from one.
  std::string line_of(const Place& place) const {
    std::ifstream file(scratch_ / "repo" / place.path);
    std::string line;
    for (std::uint32_t i = 0; i < place.line; ++i) std::getline(file, line);
    return line;
  }

  void expect_true_reasons(const std::vector<Pick>& picks) const {
    for (const Pick& pick : picks) {
      EXPECT_THAT(pick.reasons, Not(IsEmpty())) << pick.path;
      for (const Reason& reason : pick.reasons) {
        EXPECT_FALSE(reason.kind.empty() || reason.text.empty()) << pick.path;
        for (const Place& place : reason.at) {
          if (place.line == 0) continue;
          EXPECT_THAT(line_of(place), HasSubstr(place.name)) << reason.text;
        }
      }
    }
  }

 private:
  void write(const std::string& path, const std::string& text) const {
    scratch_.write("repo/" + path, text);
  }

  index::Scratch scratch_;
  std::unique_ptr<index::RepositoryIndex> index_;
  std::optional<WikiGenerator> generator_;
};

Strings paths_of(const std::vector<Pick>& picks) {
  Strings paths;
  for (const Pick& pick : picks) paths.push_back(pick.path);
  return paths;
}

std::string first_reason(const std::vector<Pick>& picks, std::size_t at) {
  return at < picks.size() && !picks[at].reasons.empty() ? picks[at].reasons.front().text : "";
}

TEST_F(PageAnswers, GiveExactlyWhatTheDetectorsReturn) {
  const auto& host = generator();
  EXPECT_EQ(paths_of(data_models_answer(host).files), host._data_model_files());
  EXPECT_EQ(paths_of(configuration_answer(host).files), host._config_files());
  EXPECT_EQ(paths_of(errors_answer(host).files), host._exception_files());
  EXPECT_EQ(paths_of(extending_answer(host).files), host._extension_files());
  EXPECT_EQ(paths_of(examples_answer(host).files), host._example_files());
  EXPECT_EQ(paths_of(decisions_answer(host).files), host._decision_files());
  const auto flows = flows_answer(host);
  ASSERT_EQ(flows.classes.size(), 1U);
  EXPECT_EQ(paths_of(flows.classes[0].files), host._flow_dispatch(flows.classes[0].roots));
}

TEST_F(PageAnswers, HaveReasonsThatHold) {
  for (const Page& page : kPages) {
    if (page.answer == nullptr) continue;
    const PageAnswer answer = page.answer(generator());
    EXPECT_THAT(answer.files, Not(IsEmpty())) << page.name;
    EXPECT_GE(answer.total, answer.files.size()) << page.name;
    EXPECT_FALSE(answer.truncated) << page.name;
    EXPECT_EQ(answer.nothing_found, "") << page.name;
    expect_true_reasons(answer.files);
    expect_true_reasons(answer.further);
  }
  for (const FlowClass& flow : flows_answer(generator()).classes) {
    EXPECT_EQ(flow.sign, "app/main.py names 3 of 3 files");
    expect_true_reasons(flow.files);
  }
}

TEST_F(PageAnswers, SayWhatWasCounted) {
  const auto& host = generator();
  EXPECT_EQ(first_reason(errors_answer(host).files, 0),
            "defines 2 exception types: AppError:1, LateError:4");
  EXPECT_EQ(first_reason(data_models_answer(host).files, 0), "defines 2 data classes");
  EXPECT_EQ(first_reason(configuration_answer(host).files, 0), "named settings.py");
  const auto extending = extending_answer(host).files;
  EXPECT_THAT(paths_of(extending), ElementsAre("app/plugins.py", "app/main.py"));
  EXPECT_EQ(first_reason(extending, 0), "registry: PLUGINS:2");
  EXPECT_THAT(first_reason(extending, 1), HasSubstr("wires in app/plugins.py (weight "));
  EXPECT_EQ(first_reason(examples_answer(host).files, 0), "used by 2 tests");
  EXPECT_EQ(first_reason(flows_answer(host).classes.at(0).files, 0), "reaches 3 of 3 entry points");
}

TEST_F(PageAnswers, TellWhatIsMissingAndWhatWasLookedFor) {
  const auto& host = generator();
  for (const Page& page : kPages) {
    EXPECT_NE(page.why_not(host, "app/jobs/b.py"), "") << page.name;
  }
  EXPECT_EQ(errors_why_not(host, "app/models.py"), "defines no error type");
  EXPECT_THAT(flows_why_not(host, "app/jobs/b.py"), HasSubstr("an entry point of the class"));
  const Strings pattern{"nowhere/*"};
  const auto flows = flows_answer(host, pattern);
  ASSERT_EQ(flows.classes.size(), 1U);
  EXPECT_THAT(flows.classes[0].roots, IsEmpty());
}

}  // namespace
}  // namespace kestrix
