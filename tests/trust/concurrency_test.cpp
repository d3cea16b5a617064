// One index and one generator serve any number of threads. The thread sanitizer is the judge.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "apps/page_sources/output.h"
#include "capi/answers/answers.h"
#include "capi/answers/json.h"
#include "kestrix/host/components.h"
#include "kestrix/host/wiki_generator.h"
#include "kestrix/index/refresh/indexer.h"
#include "kestrix/utils/best_effort.h"
#include "kestrix/utils/error.h"
#include "kestrix/utils/path_filter.h"
#include "kestrix/workers/wiki/page_sources/rules.h"
#include "tests/program/process.h"

namespace kestrix::program {
namespace {

constexpr std::size_t kThreads = 8;

/// What each of several threads gets, started as one.
std::vector<std::string> on_all_threads(const std::function<std::string()>& work) {
  std::vector<std::string> results(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (std::string& result : results) threads.emplace_back([&] { result = work(); });
  for (std::thread& thread : threads) thread.join();
  return results;
}

class Concurrency : public testing::Test {
 protected:
  Concurrency() {
    const std::filesystem::path repositories = KESTRIX_SOURCE_DIR "/tests/repositories";
    std::filesystem::create_directory(options().root);
    for (const char* name : {"python_service", "typescript_shop"}) {
      std::filesystem::copy(repositories / name / "repository", directory_.path() / "repo" / name,
                            std::filesystem::copy_options::recursive);
    }
  }

  index::IndexOptions options() const {
    index::IndexOptions options;
    options.root = directory_.path() / "repo";
    options.file = directory_.path() / "i.db";
    options.threads = 2;
    return options;
  }

  std::string pages(const index::RepositoryIndex& index) const {
    const WikiGenerator generator(index, options().root);
    return pages(generator);
  }
  static std::string pages(const WikiGenerator& generator) {
    std::vector<const Page*> all;
    for (const Page& page : kPages) all.push_back(&page);
    const std::vector<std::string> globs{"**/*.py", "**/*.ts"};
    return pages_as_json({}, answer_pages(generator, all, {})) +
           pages_as_json({}, answer_pages(generator, all, globs));
  }

  FreshDirectory directory_;
};

// The rules' own tables and patterns are made at their first use, by whichever thread comes first.
TEST_F(Concurrency, RulesAndDetectorsShareAGenerator) {
  const auto opened = index::refresh_and_open(options());
  const WikiGenerator generator(*opened.index, options().root);
  const auto results = on_all_threads([&] {
    std::string text = pages(generator);
    for (const FoundEdge& edge : find_edges(*opened.index, {})) {
      const std::string& source = edge.source;
      text += source + std::to_string(is_archived_path(source)) +
              std::to_string(is_config_path(source)) + std::to_string(is_registry_name(source));
    }
    for (const FoundSymbol& symbol : find_symbols(*opened.index, {}, "*e*")) text += symbol.name;
    return text;
  });
  EXPECT_GT(results.front().size(), 1000U);
  EXPECT_EQ(results, std::vector(kThreads, results.front()));
}

TEST_F(Concurrency, WritersAndReadersShareAnIndexFile) {
  const auto results =
      on_all_threads([&] { return pages(*index::refresh_and_open(options()).index); });
  EXPECT_EQ(results, std::vector(kThreads, pages(*index::open(options()))));
}

TEST(AbsorbedFailures, AreToldLineByLine) {
  testing::internal::CaptureStderr();
  on_all_threads([] {
    const auto fails = []() -> std::string { throw Error("told"); };
    return best_effort("trust.label", std::string("fallback"))(fails)();
  });
  std::istringstream told(testing::internal::GetCapturedStderr());
  std::size_t whole = 0;
  for (std::string line; std::getline(told, line);) {
    whole += line.starts_with("warning: ") && line.ends_with("kestrix::Error: told") ? 1 : 0;
  }
  EXPECT_EQ(whole, kThreads);
}

}  // namespace
}  // namespace kestrix::program
