#include <gtest/gtest.h>

#include <functional>

#include "tests/component/fake_host.h"

namespace kestrix::test {
namespace {

using Calls = std::vector<std::string>;

/// A host with something for every page.
struct Scene {
  Scene() {
    world.planner = {"b.py", "a.py", "src/c.py", "a.py"};
    world.sources = {file("./tests/test_a.py"),
                     file("config/x.py"),
                     {},
                     file("a.py"),
                     file("Settings.YAML"),
                     file("./a/config/x.py"),
                     file("tests/common.py"),
                     file("config/x.py")};
    world.documents = {document("./docs/old/1.md"), document("docs/2.md"), document("docs/3.md")};
    world.texts = {{"/repo/a.py", "A"}, {"/repo/b.py", "B"}};
    world.edges = {edge("tests/test_a.py", "tests/common.py"), edge("tests/test_a.py", "a.py"),
                   edge("src/c.py", "a.py", 2), edge("src/c.py", "b.py", 3)};
    world.components = {
        {"application", "app/**"}, {"domain", "src/**"}, {"domain", "odd"}, {"Domain", "x/**"}};
    world.searches[{"class", "%Error"}] = {{}, 0, false};
    world.searches[{"class", "%Exception"}] = {{symbol(1, "ParseException")}, 7, true};
    world.searches[{"class", "[%Error %Exception]"}] = {
        {symbol(1, "AError"), symbol(2, "BError"), symbol(3, "BException"),
         symbol(0, "NoFileError"), symbol(4, "LostError"), symbol(5, "TestError")},
        6,
        false};
    world.searches[{"class", "%"}] = {
        {symbol(1, "A", "class A(ABC)"), symbol(2, "B"), symbol(0, "N", "class N(ABC)")}, 3, false};
    world.searches[{"interface", "%"}] = {{symbol(6, "I"), symbol(3, "Outside")}, 2, false};
    const std::string registries = "[%REGISTRY %REGISTRIES %HANDLERS %PLUGINS %TOOLS]";
    world.searches[{"constant", registries}] = {
        {symbol(2, "TOOL_REGISTRY"), symbol(2, "MYTOOLS")}, 2, false};
    world.searches[{"variable", registries}] = {{symbol(5, "plugins")}, 1, false};
    world.symbol_files = {{1, "./a.py"},          {2, "b.py"},    {3, "b.py"}, {4, ""},
                          {5, "tests/test_a.py"}, {6, "src/c.py"}};
  }

  World world;
  FakeHost host;
};

const std::string kAll = "cluster_inputs(a.py b.py src/c.py)";

/// One detector as the tests run it: its name, its result as text, and the calls that it makes on
/// the scene.
struct Detector {
  const char* name;
  std::function<Paths(const FakeHost&)> run;
  Paths expected;
  Calls calls;
};

Paths sources_of(const std::vector<FileEdge>& edges) {
  Paths paths;
  for (const FileEdge& edge : edges) paths.emplace_back(edge.source);
  return paths;
}

const Paths kRoots{"a.py", "b.py", "x/d.py"};

Calls norm_calls(const Calls& paths, bool test_paths) {
  Calls calls;
  for (const auto& path : paths) {
    calls.push_back("_norm(" + path + ")");
    const auto normal = path.starts_with("./") ? path.substr(2) : path;
    if (test_paths) calls.push_back("is_test_path(" + normal + ")");
  }
  return calls;
}

const Calls kSources{"./tests/test_a.py", "config/x.py",     "",           "a.py", "Settings.YAML",
                     "./a/config/x.py",   "tests/common.py", "config/x.py"};

Calls operator+(Calls head, const Calls& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

const Calls kLookups{
    "search_symbols(%, class, 20000)", "search_symbols(%, interface, 20000)",
    "search_symbols([%REGISTRY %REGISTRIES %HANDLERS %PLUGINS %TOOLS], constant, 20000)",
    "search_symbols([%REGISTRY %REGISTRIES %HANDLERS %PLUGINS %TOOLS], variable, 20000)",
    "get_file_paths_batch(A B N I Outside TOOL_REGISTRY MYTOOLS plugins)"};

std::vector<Detector> detectors() {
  return {
      {"_file_edges",
       [](const FakeHost& host) {
         return sources_of(host._file_edges({"b", "a"}));
       },
       {"tests/test_a.py", "tests/test_a.py", "src/c.py", "src/c.py"},
       {"cluster_inputs(a b)"}},
      {"_config_files",
       [](const FakeHost& host) { return host._config_files(); },
       {"Settings.YAML", "a/config/x.py", "config/x.py"},
       Calls{"_source_files"} + norm_calls(kSources, false)},
      {"_has_exceptions",
       [](const FakeHost& host) { return host._has_exceptions() ? Paths{"yes"} : Paths{}; },
       {"yes"},
       {"search_symbols(%Error, class, 1)", "search_symbols(%Exception, class, 1)"}},
      {"_exception_files",
       [](const FakeHost& host) { return host._exception_files(); },
       {"b.py", "a.py"},
       {"search_symbols([%Error %Exception], class, 20000)",
        "get_file_paths_batch(AError BError BException NoFileError LostError TestError)",
        "_planner_paths", "_norm(./a.py)", "_norm(b.py)", "_norm(b.py)", "_norm()",
        "_norm(tests/test_a.py)"}},
      {"_data_model_files",
       [](const FakeHost& host) { return host._data_model_files(); },
       {"b.py", "a.py", "src/c.py"},
       {"_planner_paths", "_read_text(/repo/b.py, 400000)", "_read_text(/repo/a.py, 400000)",
        "_read_text(/repo/src/c.py, 400000)", "_read_text(/repo/a.py, 400000)",
        "data_model_files(b.py=B a.py=A src/c.py=)"}},
      {"_decision_files",
       [](const FakeHost& host) { return host._decision_files(); },
       {"docs/2.md", "docs/3.md", "docs/old/1.md"},
       {"_indexed_documents", "_norm(./docs/old/1.md)", "_norm(docs/2.md)", "_norm(docs/3.md)",
        "decision_docs(docs/old/1.md docs/2.md docs/3.md, 3)"}},
      {"_extension_files",
       [](const FakeHost& host) { return host._extension_files(); },
       {"a.py", "b.py", "src/c.py"},
       Calls{"_planner_paths", "get_all_components(true)", "root_of_pattern(src/**)",
             "root_of_pattern(odd)"} +
           kLookups +
           Calls{"search(class A(ABC))", "_norm(./a.py)", "search()", "search(class N(ABC))",
                 "_norm(src/c.py)", "most_specific(src, src/c.py)", "_norm(b.py)",
                 "most_specific(src, b.py)", "_norm(b.py)", "_norm(tests/test_a.py)", kAll,
                 "extension_files({a.py=1}, {b.py=1}, 6)", "extension_files({src/c.py=1}, {}, 6)"}},
      {"_test_files",
       [](const FakeHost& host) { return host._test_files(); },
       {"tests/test_a.py", "tests/common.py"},
       Calls{"_source_files"} + norm_calls(kSources, true)},
      {"_example_files",
       [](const FakeHost& host) { return host._example_files(); },
       {"tests/common.py", "tests/test_a.py"},
       Calls{"_source_files"} + norm_calls(kSources, true) +
           Calls{"_planner_paths",
                 "cluster_inputs(a.py b.py src/c.py tests/common.py tests/test_a.py)",
                 "is_test_path(a.py)"}},
      {"_flow_dispatch",
       [](const FakeHost& host) { return host._flow_dispatch(kRoots); },
       {"src/c.py"},
       {"_planner_paths", kAll}},
  };
}

TEST(Detectors, GiveTheirResultByTheirExactCalls) {
  for (const Detector& detector : detectors()) {
    SCOPED_TRACE(detector.name);
    Scene scene;
    EXPECT_EQ(detector.run(scene.host), detector.expected);
    EXPECT_EQ(scene.world.calls, detector.calls);
    EXPECT_TRUE(scene.world.warnings.empty());
    EXPECT_TRUE(scene.world.absorbed.empty());
  }
}

/// Which detectors swallow a failure of the call: the guarded ones any, the extension detector
/// that of its look-ups.
bool absorbs(const Detector& detector, const std::string& call) {
  const std::string name = detector.name;
  if (name == "_has_exceptions" || name == "_exception_files") return true;
  return name == "_extension_files" && std::ranges::find(kLookups, call) != kLookups.end();
}

TEST(Detectors, PassOnTheFailureOfEveryCallUnlessTheyAbsorbIt) {
  for (const Detector& detector : detectors()) {
    for (std::size_t i = 0; i < detector.calls.size(); ++i) {
      const std::string& call = detector.calls[i];
      SCOPED_TRACE(detector.name + std::string(" fails at ") + call);
      Scene scene;
      scene.world.fail_at = i;
      if (absorbs(detector, call)) {
        EXPECT_EQ(detector.run(scene.host), Paths{});
        EXPECT_EQ(scene.world.warnings.size() + scene.world.absorbed.size(), 1U);
      } else {
        EXPECT_THROW(detector.run(scene.host), Error);
        EXPECT_TRUE(scene.world.warnings.empty());
      }
      EXPECT_EQ(scene.world.calls.size(), i + 1) << "nothing is called after a failure";
    }
  }
}

TEST(Detectors, LetARequestToStopPassAtEveryCall) {
  for (const Detector& detector : detectors()) {
    for (std::size_t i = 0; i < detector.calls.size(); ++i) {
      SCOPED_TRACE(detector.name + std::string(" stops at ") + detector.calls[i]);
      Scene scene;
      scene.world.fail_at = i;
      scene.world.fault = World::Fault::kStop;
      EXPECT_THROW(detector.run(scene.host), StopRequest);
      EXPECT_TRUE(scene.world.warnings.empty());
      EXPECT_TRUE(scene.world.absorbed.empty());
    }
  }
}

TEST(Detectors, NameWhatTheyAbsorbed) {
  Scene scene;
  scene.world.fail_at = 0;
  EXPECT_FALSE(scene.host._has_exceptions());
  EXPECT_EQ(scene.world.absorbed,
            Calls{"wiki.exception_classes: search_symbols(%Error, class, 1) failed"});
  scene.world.fail_at = scene.world.calls.size();
  EXPECT_TRUE(scene.host._exception_files().empty());
  EXPECT_EQ(scene.world.absorbed.back(),
            "wiki.exception_files: search_symbols([%Error %Exception], class, 20000) failed");
  scene.world.fail_at = scene.world.calls.size() + 4;
  EXPECT_TRUE(scene.host._extension_files().empty());
  EXPECT_EQ(scene.world.warnings,
            Calls{"kestrix.workers.wiki.page_sources: wiki: the extension-point lookup failed: "
                  "kestrix::Error: search_symbols(%, class, 20000) failed"});
}

TEST(Detectors, AnswerForAnEmptyIndex) {
  World world;
  const FakeHost host;
  EXPECT_TRUE(host._config_files().empty());
  EXPECT_FALSE(host._has_exceptions());
  EXPECT_TRUE(host._data_model_files().empty());
  EXPECT_TRUE(host._test_files().empty());
  world.calls.clear();
  EXPECT_TRUE(host._exception_files().empty());
  EXPECT_EQ(world.calls[1], "get_file_paths_batch()");
  world.calls.clear();
  EXPECT_TRUE(host._decision_files().empty());
  EXPECT_EQ(world.calls.back(), "decision_docs(, 0)");
  world.calls.clear();
  EXPECT_TRUE(host._example_files().empty());
  EXPECT_EQ(world.calls, (Calls{"_source_files", "_planner_paths", "cluster_inputs()"}));
  world.calls.clear();
  EXPECT_TRUE(host._flow_dispatch(Paths{"a", "b"}).empty());
  EXPECT_EQ(world.calls, (Calls{"_planner_paths", "cluster_inputs()"}));
}

TEST(HasExceptions, StopsAtTheFirstPatternThatMatches) {
  Scene scene;
  scene.world.searches[{"class", "%Error"}].total = 1;
  EXPECT_TRUE(scene.host._has_exceptions());
  EXPECT_EQ(scene.world.calls, Calls{"search_symbols(%Error, class, 1)"});
}

TEST(ExceptionFiles, RanksByCountThenPathAndCuts) {
  World world;
  const FakeHost host;
  world.planner = {"a.py", "b.py", "c.py", "d.py", "e.py"};
  SymbolId next = 1;
  auto& found = world.searches[{"class", "[%Error %Exception]"}].symbols;
  for (const auto& [path, count] :
       {std::pair("e.py", 1), {"b.py", 3}, {"d.py", 1}, {"c.py", 5}, {"a.py", 3}}) {
    for (int i = 0; i < count; ++i) {
      world.symbol_files[next] = path;
      found.push_back(symbol(next++, "XError"));
    }
  }
  EXPECT_EQ(host._exception_files(), (Paths{"c.py", "a.py", "b.py", "d.py"}));
}

TEST(DecisionFiles, FailForARecordWithoutAPath) {
  World world;
  const FakeHost host;
  world.documents = {document("a.md"), {}};
  EXPECT_THROW(host._decision_files(), MissingEntry);
}

/// A generator that brings its own test files and edges.
class Overriding : public FakeHost {
 public:
  std::vector<std::string> _test_files() const override { return {"own"}; }
  std::vector<FileEdge> _file_edges(const PathSet& paths) const override {
    asked = paths;
    return {edge("own", "a.py"), edge("x/y", "a.py"), edge("x/y", "b.py")};
  }
  mutable PathSet asked;
};

TEST(Detectors, CallEachOtherThroughTheirOverrides) {
  Scene scene;
  const Overriding host;
  EXPECT_EQ(host._example_files(), Paths{"own"});
  EXPECT_TRUE(host.asked.contains("own"));
  EXPECT_EQ(host._flow_dispatch(kRoots), Paths{"x/y"});
}

}  // namespace
}  // namespace kestrix::test
