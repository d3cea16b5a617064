// Twice the repository costs twice the work. Work is counted in bytes that are allocated, which are
// the same in every run.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kestrix/languages/ecmascript/targets.h"
#include "tests/languages/allocation.h"
#include "tests/languages/world.h"

namespace kestrix::index {
namespace {

std::size_t cost_of(const World& world) {
  edges_of(world);  // what is made once
  const std::size_t before = allocated_bytes();
  edges_of(world);
  return allocated_bytes() - before;
}

std::string repeated(std::size_t times, const std::function<std::string(std::size_t)>& piece) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) text += (i > 0 ? "," : "") + piece(i);
  return text;
}

World setup_requires(std::size_t n) {
  std::string text;
  for (std::size_t i = 0; i < n; ++i) text += fmt::format("x_requires = 'name{}' \n", i);
  return {{"setup.py", text}, {"a.py", "import b"}};
}

World configs_of_one_base(std::size_t n) {
  const auto rule = [](std::size_t i) { return fmt::format(R"("a{}/*": ["b/*"])", i); };
  World world = {
      {"tsconfig.base.json", R"({"compilerOptions": {"paths": {)" + repeated(n, rule) + "}}}"},
      {"a.ts", "import 'a1/x'"}};
  for (std::size_t i = 0; i < n; ++i) {
    world[fmt::format("p{}/tsconfig.json", i)] = R"({"extends": "../tsconfig.base.json"})";
  }
  return world;
}

World configs_in_a_graph(std::size_t n) {
  World world = {{"a.ts", "import 'x'"}};
  for (std::size_t i = 0; i < n; ++i) {
    world[fmt::format("tsconfig.{}.json", i)] = fmt::format(
        R"({{"extends": ["./tsconfig.{}.json", "./tsconfig.{}.json"]}})", (i + 1) % n, (i + 2) % n);
  }
  return world;
}

World globs_and_packages(std::size_t n) {
  const auto glob = [](std::size_t i) { return fmt::format(R"("p{}/{{a,b}}/**/x*y*")", i); };
  World world = {{"package.json", R"({"workspaces": [)" + repeated(n, glob) + "]}"},
                 {"a.ts", "import 'm1'"}};
  for (std::size_t i = 0; i < n; ++i) {
    world[fmt::format("p{}/a/xy/package.json", i)] = fmt::format(R"({{"name": "m{}"}})", i);
  }
  return world;
}

using MakeWorld = World (*)(std::size_t);

void expect_linear(const std::vector<std::pair<const char*, MakeWorld>>& cases) {
  constexpr std::size_t kSize = 300;
  for (const auto& [name, world] : cases) {
    const auto once = static_cast<double>(cost_of(world(kSize)));
    const auto twice = static_cast<double>(cost_of(world(2 * kSize)));
    EXPECT_LT(twice, 2.6 * once) << name;
  }
}

TEST(ProjectFiles, CostNoMoreThanTheirSize) {
  expect_linear({
      {"setup.py", setup_requires},
      {"configurations of one base", configs_of_one_base},
      {"configurations that extend each other", configs_in_a_graph},
      // Beyond what is read of patterns, which are tried on each package.
      {"patterns of a workspace", [](std::size_t n) { return globs_and_packages(4 * n); }},
  });
}

std::string mod_twice(std::size_t file) {
  return fmt::format("#[path = \"f{0}.rs\"] mod x;\n#[path = \"f{0}.rs\"] mod y;\n", file);
}

// Two ways to each next module: as many places as there are ways.
World modules_by_two_ways(std::size_t n) {
  World world = {{"src/lib.rs", "#[path = \"f0.rs\"] mod start;"}};
  for (std::size_t i = 0; i < n; ++i) world[fmt::format("src/f{}.rs", i)] = mod_twice(i + 1);
  return world;
}

World modules_in_a_circle(std::size_t n) {
  return {{"src/lib.rs", "#[path = \"f0.rs\"] mod start;"},
          {"src/f0.rs", mod_twice(1) + std::string(n, ' ')},
          {"src/f1.rs", mod_twice(0)}};
}

World uses_of_all_names(std::size_t n) {
  std::string text = "mod m;\n";
  for (std::size_t i = 0; i < 10 * n; ++i)
    text += fmt::format("use self::m::*;\nuse q{0}::r{0};\n", i);
  return {{"src/lib.rs", text}, {"src/m.rs", "pub fn f() {}"}};
}

World programs_of_one_module(std::size_t n) {
  std::string manifest = "[package]\nname = \"a\"\n";
  World world = {{"src/s.rs", ""}};
  for (std::size_t i = 0; i < n; ++i) {
    manifest += fmt::format("[[bin]]\nname = \"b{0}\"\npath = \"src/main.rs\"\n", i);
    world["src/s.rs"] += fmt::format("mod t{};\n", i);
  }
  world["Cargo.toml"] = manifest;
  world["src/main.rs"] = "mod s;";
  return world;
}

std::string lines(std::size_t times, const std::function<std::string(std::size_t)>& piece) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) text += piece(i) + "\n";
  return text;
}

World constants_in_opened_modules(std::size_t n) {
  return {
      {"a.rb", lines(2 * n, [](auto i) { return fmt::format("module M{}\nend", i); }) +
                   lines(2 * n, [](auto i) { return fmt::format("SomeLongConstant{}.a", i); })}};
}

World parts_of_a_name(std::size_t n) {
  std::string name = "A";
  for (std::size_t i = 0; i < 10 * n; ++i) name += "::A";
  return {{"a.rb", "module " + name + "\nend\n"}};
}

World names_through_wildcards(std::size_t n) {
  World world = {
      {"a/A.java",
       "package a;\n" + lines(n, [](auto i) { return fmt::format("import b{}.*;", i); }) +
           "class A {\n" + lines(n, [](auto i) { return fmt::format("N{0} x{0};", i); }) + "}"}};
  for (std::size_t i = 0; i < n; ++i)
    world[fmt::format("b{}/B.java", i)] = fmt::format("package b{}; class B {{}}", i);
  return world;
}

World barrels_of_one_file(std::size_t n) {
  World world = {
      {"b.ts", lines(n, [](auto i) { return fmt::format("export const c{} = 1;", i); })}};
  for (std::size_t i = 0; i < n; ++i) world[fmt::format("a{}.ts", i)] = "export * from './b'";
  return world;
}

World blank_imports_of_a_large_package(std::size_t n) {
  World world = {{"go.mod", "module m"}};
  for (std::size_t i = 0; i < n; ++i) {
    world[fmt::format("p/f{}.go", i)] = "package p\nimport _ \"m/q\"";
    world[fmt::format("q/f{}.go", i)] = fmt::format("package q\nfunc F{}() {{}}", i);
  }
  return world;
}

World imports_from_packages_around(std::size_t n) {
  std::string text = "package a.b.c.d\npackage e.f.g\nimport x.{";
  for (std::size_t i = 0; i < n; ++i) text += fmt::format("T{}, ", i);
  text += "Last}\n";
  for (std::size_t i = 0; i < n; ++i) text += fmt::format("import p{}.q.r._\n", i);
  return {{"a/A.scala", text + "class A(t: T1)"}, {"x/X.scala", "package a.x\nclass T1"}};
}

World targets_of_a_package(std::size_t n) {
  World world = {{"Package.swift", ""}};
  for (std::size_t i = 0; i < n; ++i) {
    world["Package.swift"] += fmt::format(".target(name: \"T{0}\", path: \"p{0}\"),\n", i);
    world[fmt::format("p{}/A.swift", i)] = fmt::format("import T{0}\nlet a = B{0}()", i + 1);
    world[fmt::format("p{}/B.swift", i)] = fmt::format("struct B{} {{}}", i);
  }
  return world;
}

TEST(Imports, CostNoMoreThanTheirNumber) {
  expect_linear({
      {"imports from packages around", imports_from_packages_around},
      {"targets of a package", targets_of_a_package},
      {"modules by two ways each", modules_by_two_ways},
      {"modules in a circle", modules_in_a_circle},
      {"uses of all names of a module", uses_of_all_names},
      {"programs of one module", programs_of_one_module},
      {"constants in opened modules", constants_in_opened_modules},
      {"parts of a name", parts_of_a_name},
      {"names through wildcards", names_through_wildcards},
      {"barrels of one file", barrels_of_one_file},
      {"blank imports of a large package", blank_imports_of_a_large_package},
  });
}

TEST(ProjectFiles, CostALookUpNoMoreThanTheLimit) {
  constexpr std::size_t kPatterns = ecmascript::TargetMap::kMostPatterns;
  Json exports = Json::object();
  for (std::size_t i = 0; i < 2 * kPatterns; ++i) {
    exports[fmt::format("./{:04}/*", i)] = "./src/*.js";
  }
  const ecmascript::TargetMap map(exports);
  EXPECT_EQ(map.find(fmt::format("./{:04}/a", kPatterns - 1)),
            std::vector<std::string>{"./src/a.js"});
  EXPECT_TRUE(map.find(fmt::format("./{:04}/a", kPatterns)).empty());
  EXPECT_EQ(map.find(fmt::format("./{:04}/*", kPatterns)), std::vector<std::string>{"./src/*.js"});
  EXPECT_TRUE(map.find("./0001/" + std::string(2000, 'x')).empty());
}

}  // namespace
}  // namespace kestrix::index
