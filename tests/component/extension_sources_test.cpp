#include <gtest/gtest.h>

#include "tests/component/fake_host.h"

namespace kestrix::test {
namespace {

PathCounts counted(std::initializer_list<const char*> paths) {
  PathCounts counts;
  for (const char* path : paths) counts.add(path, 1);
  return counts;
}

const PathCounts kNone;

TEST(ExtensionSources, TakesUsedFilesFirstThenWiring) {
  const struct {
    const char* what;
    PathCounts interfaces;
    PathCounts registries;
    Edges edges;
    Paths expected;
  } cases[] = {
      {"nothing", kNone, kNone, {}, {}},
      {"used before unused",
       counted({"i1", "i2"}),
       counted({"r1"}),
       {edge("u", "i2")},
       {"i2", "i1", "r1"}},
      {"unused get the places that are left",
       counted({"i1", "i2", "i3", "i4", "i5", "i6", "i7"}),
       counted({"r"}),
       {edge("u", "i2"), edge("u", "i3"), edge("u", "i4"), edge("u", "i5"), edge("u", "i6"),
        edge("u", "i7")},
       {"i2", "i3", "i4", "i5", "i6", "i7"}},
      {"a contract brings no wiring", counted({"i"}), kNone, {edge("u", "i")}, {"i"}},
      {"a contract that is a registry too does",
       counted({"b"}),
       counted({"b"}),
       {edge("u", "b")},
       {"b", "b", "u"}},
      {"the strongest dependent",
       kNone,
       counted({"r"}),
       {edge("weak", "r", 1), edge("strong", "r", 3), edge("weak", "r", 1)},
       {"r", "strong"}},
      {"the first counted among equals",
       kNone,
       counted({"r"}),
       {edge("z", "r", 2), edge("a", "r", 2)},
       {"r", "z"}},
      {"a weight of 0 is a use",
       kNone,
       counted({"r0", "r1"}),
       {edge("u", "r1", 0)},
       {"r1", "r0", "u"}},
      {"one wiring file of two registries",
       kNone,
       counted({"r1", "r2"}),
       {edge("u", "r1"), edge("u", "r2")},
       {"r1", "r2", "u"}},
      {"a picked dependent is not replaced",
       counted({"i"}),
       counted({"r"}),
       {edge("u", "i"), edge("i", "r", 2), edge("second", "r", 1)},
       {"i", "r"}},
      {"four wiring files at most",
       kNone,
       counted({"r1", "r2", "r3", "r4", "r5"}),
       {edge("u1", "r1"), edge("u2", "r2"), edge("u3", "r3"), edge("u4", "r4"), edge("u5", "r5")},
       {"r1", "r2", "r3", "r4", "r5", "u1", "u2", "u3", "u4"}},
  };
  World world;
  for (const auto& [what, interfaces, registries, edges, expected] : cases) {
    const auto dependents = dependents_of(edges);
    EXPECT_EQ(extension_sources(interfaces, registries, dependents), expected) << what;
    EXPECT_EQ(dependents, dependents_of(edges)) << what;
  }
}

TEST(ExtensionSources, RanksEachSideByTheHost) {
  World world;
  PathCounts interfaces = counted({"i2", "i1", "i3"});
  interfaces.add("i1", 4);
  extension_sources(interfaces, counted({"r"}),
                    dependents_of(Edges{edge("u", "i1"), edge("u", "i2")}));
  EXPECT_EQ(world.calls, (std::vector<std::string>{"extension_files({i2=1 i1=5}, {}, 6)",
                                                   "extension_files({i3=1}, {r=1}, 6)"}));
}

}  // namespace
}  // namespace kestrix::test
