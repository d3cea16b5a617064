#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

const std::string kMod = "module example.com/app // ours\n\ngo 1.22\n";

TEST(GoResolver, LeadsToTheFilesThatDeclareTheNames) {
  check({
      {"not to every file of the package",
       {{"go.mod", kMod},
        {"main.go", "package main\nimport \"example.com/app/store\"\nvar x = store.Get(store.Max)"},
        {"store/get.go", "package store\nfunc Get(int) {}"},
        {"store/max.go", "package store\nconst Max = 1"},
        {"store/put.go", "package store\nfunc Put() {}"},
        {"store/get_test.go", "package store\nfunc Get(int) {}"}},
       {"main.go -> store/get.go", "main.go -> store/max.go"}},
      {"under another name than the folder's, renamed, and hidden in one function",
       {{"go.mod", kMod},
        {"a.go", "package app\nimport \"example.com/app/go-yaml\"\nvar x = yaml.Get()"},
        {"b.go", "package app\nimport y \"example.com/app/go-yaml\"\ntype T struct { f y.Node }"},
        {"c.go",
         "package app\nimport \"example.com/app/go-yaml\"\n"
         "func f() { yaml.Get(); for _, yaml := range s { yaml.x() } }"},
        {"go-yaml/get.go", "package yaml\nfunc Get() {}"},
        {"go-yaml/node.go", "package yaml\ntype Node struct{}"}},
       {"a.go -> go-yaml/get.go", "b.go -> go-yaml/node.go", "c.go -> go-yaml/get.go"}},
      {"every variant of a file",
       {{"go.mod", kMod},
        {"a.go", "package app\nimport \"example.com/app/os\"\nvar x = os.Get()"},
        {"os/get_linux.go", "package os\nfunc Get() {}"},
        {"os/get_windows.go", "package os\nfunc Get() {}"}},
       {"a.go -> os/get_linux.go", "a.go -> os/get_windows.go"}},
      {"by a blank import to what runs, by a dot import to what is used",
       {{"go.mod", kMod},
        {"a.go",
         "package app\nimport _ \"example.com/app/driver\"\nimport . \"example.com/app/dot\"\n"
         "var x = Dotted"},
        {"driver/a.go", "package driver\nfunc init() {}"},
        {"driver/b.go", "package driver"},
        {"dot/a.go", "package dot\nvar Dotted = 1"},
        {"dot/b.go", "package dot\nvar Other = 1"}},
       {"a.go -> driver/a.go", "a.go -> dot/a.go"}},
  });
}

TEST(GoResolver, FollowsTheOwnPackage) {
  check({
      {"types, functions and values, but no members, keys or locals",
       {{"a.go", "package p\nfunc f(x Type) { y := call(); y.Other(); g(T{Key: val, x: y}) }"},
        {"type.go", "package p\ntype Type struct{}"},
        {"call.go", "package p\nfunc call() {}"},
        {"val.go", "package p\nvar val = 1"},
        {"other.go", "package p\nfunc Other() {}\nvar Key, x, y int"}},
       {"a.go -> type.go", "a.go -> call.go", "a.go -> val.go"}},
      {"of one folder only, and not from another package in it",
       {{"a.go", "package p\nvar x = call()"},
        {"q/b.go", "package p\nfunc call() {}"},
        {"gen.go", "package main\nfunc call() {}"}},
       {}},
      {"tests see the package, an outer test what the inner one hands on",
       {{"go.mod", kMod},
        {"p/a.go", "package p\nfunc Get() { helper() }"},
        {"p/a_test.go", "package p\nfunc helper() { Get() }\nvar Export = Get"},
        {"p/b_test.go", "package p_test\nimport \"example.com/app/p\"\nvar x = p.Export(p.Get)"}},
       {"p/a_test.go -> p/a.go", "p/b_test.go -> p/a.go", "p/b_test.go -> p/a_test.go"}},
      {"programs that share a folder are none of each other's",
       {{"a.go", "package main\nfunc main() { run() }"},
        {"b.go", "package main\nfunc main() {}\nfunc run() {}"}},
       {"a.go -> b.go"}},
  });
}

TEST(GoResolver, KnowsModules) {
  const std::string get = "package a\nfunc Get() {}";
  const auto importing = [](const std::string& path) {
    return "package x\nimport a \"" + path + "\"\nvar x = a.Get()";
  };
  check({
      {"nested ones, and those of another major version",
       {{"go.mod", kMod},
        {"sub/go.mod", "module example.com/app/sub/v2"},
        {"sub/a/a.go", get},
        {"y.go", importing("example.com/app/sub/v2/a")}},
       {"y.go -> sub/a/a.go"}},
      {"replaced by a folder",
       {{"go.mod", kMod + "replace (\n\tother.org/lib v1.0.0 => ./third/lib\n\tother.org/far => "
                          "far.org/x v1\n)"},
        {"x.go", importing("other.org/lib/a")},
        {"y.go", importing("other.org/far/a")},
        {"third/lib/a/a.go", get},
        {"far/a/a.go", get}},
       {"x.go -> third/lib/a/a.go"}},
      {"of one workspace, replaced for all of them",
       {{"go.work",
         "go 1.22\nuse (\n\t./app\n\t./lib\n)\nreplace other.org/far => ./fork // ours\n"},
        {"app/go.mod", "module example.com/app"},
        {"app/x.go", importing("example.com/lib/a")},
        {"app/y.go", importing("other.org/far")},
        {"lib/go.mod", "module example.com/lib"},
        {"lib/a/a.go", get},
        {"fork/a.go", get}},
       {"app/x.go -> lib/a/a.go", "app/y.go -> fork/a.go"}},
      {"a test's data is no module for others",
       {{"go.mod", kMod},
        {"x.go", importing("github.com/lib/a")},
        {"testdata/go.mod", "module github.com/lib"},
        {"testdata/a/a.go", get},
        {"testdata/x.go", importing("github.com/lib/a")}},
       {"testdata/x.go -> testdata/a/a.go"}},
      {"vendored ones",
       {{"go.mod", kMod}, {"p/x.go", importing("lib.org/a")}, {"vendor/lib.org/a/a.go", get}},
       {"p/x.go -> vendor/lib.org/a/a.go"}},
      {"a library is no folder of its name; a gap in the own module is counted",
       {{"go.mod", kMod},
        {"x.go", importing("github.com/pkg/errors")},
        {"y.go", importing("example.com/app/gen")},
        {"z.go", importing("example.com/application/a")},
        {"errors/a.go", get},
        {"a/a.go", get}},
       {"unresolved 1"}},
  });
}

TEST(GoResolver, WeighsByUse) {
  EXPECT_THAT(
      weighted_edges_of(
          {{"go.mod", kMod},
           {"a.go",
            "package app\nimport \"example.com/app/p\"\nvar x = p.A(p.A, p.B)\nvar y = own(own)"},
           {"own.go", "package app\nfunc own() {}"},
           {"p/p.go", "package p\nfunc A() {}\nfunc B() {}"}}),
      ElementsAre("a.go -> own.go *2", "a.go -> p/p.go *4"));
}

}  // namespace
}  // namespace kestrix::index
