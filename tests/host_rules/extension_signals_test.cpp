// What shows that one extends a product in a file, each beside what only looks like it.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kestrix/host/wiki_generator.h"
#include "tests/host_rules/answered_repository.h"
#include "tests/host_rules/signal_case.h"

namespace kestrix {
namespace {

using Files = AnsweredRepository::Files;

using Case = SignalCase;

// Packages that call a function, in what runs when they are loaded or later.
Files callers(std::string_view function) {
  const std::string text = fmt::format(
      "package {{0}}\n\nimport \"shop/core\"\n\nfunc {}() {{{{\n\tcore.Register(\"{{0}}\")\n}}}}\n",
      function);
  return repeated(4, "{0}/{0}.go", text,
                  {{"go.mod", "module shop\n\ngo 1.22\n"},
                   {"core/core.go", "package core\n\nfunc Register(name string) {}\n"}});
}

// Packages with a type that has the one method of an interface, and what they import.
Files named(std::string_view import) {
  const std::string text = fmt::format(
      "package {{0}}\n\n{}type {{0}}Part struct{{{{}}}}\n\nfunc (p {{0}}Part) Name() string {{{{ "
      "return \"{{0}}\" }}}}\n",
      import);
  return repeated(5, "{0}/{0}.go", text,
                  {{"go.mod", "module shop\n\ngo 1.22\n"},
                   {"core/core.go",
                    "package core\n\ntype Part interface {\n\tName() string\n}\n\n"
                    "var Known = []string{\"a\"}\n"},
                   {"use/use.go",
                    "package use\n\nimport \"shop/core\"\n\nfunc Show(p core.Part) string { return "
                    "p.Name() }\n"}});
}

Files table(std::size_t rows) {
  std::string functions, names;
  for (std::size_t at = 0; at < rows; ++at) {
    functions += fmt::format("static int f{0}(int a) {{ return a + {0}; }}\n", at);
    names += fmt::format("  {{ \"{0}\", f{0} }},\n", at);
  }
  return {{"format.c", functions +
                           "struct row { const char *name; int (*call)(int); };\n"
                           "static const struct row rows[] = {\n" +
                           names + "};\nint go(int a) { return rows[a].call(a); }\n"}};
}

// Handlers of which one file names all, and what else names them.
Files handlers(std::size_t count, Files more) {
  std::string imports, calls;
  for (std::size_t at = 0; at < count; ++at) {
    imports += fmt::format("from shop.{0}.views import show_{0}\n", static_cast<char>('a' + at));
    calls += fmt::format("    show_{}(app)\n", static_cast<char>('a' + at));
  }
  more.emplace_back("shop/main.py", imports + "\ndef main(app):\n" + calls);
  return repeated(count, "shop/{0}/views.py", "def show_{0}(app):\n    return app\n",
                  std::move(more));
}

// A type that a loader looks up, or that its users are given like any other.
Files looked_up(std::size_t users) {
  return repeated(
      users, "use/{0}.rb", "class Use{0}\n  def go(all)\n    all.find(Filter)\n  end\nend\n",
      {{"lib/filter.rb",
        "class Filter\n  def call(text)\n    raise NotImplementedError\n  end\nend\n"},
       {"lib/kinds/plain.rb", "class Plain < Filter\n  def call(text)\n    text\n  end\nend\n"},
       {"lib/kinds/wide.rb", "class Wide < Filter\n  def call(text)\n    text * 2\n  end\nend\n"}});
}

// A trait and its implementations in one file beside it.
Files flags(std::size_t count) {
  std::string types;
  for (std::size_t at = 0; at < count; ++at) {
    types += fmt::format(
        "pub struct F{0};\nimpl Flag for F{0} {{\n    fn name(&self) -> u32 {{ {0} }}\n}}\n", at);
  }
  return {{"Cargo.toml", "[package]\nname = \"shop\"\nversion = \"0.1.0\"\n"},
          {"src/lib.rs", "pub mod flag;\npub mod defs;\n"},
          {"src/flag.rs", "pub trait Flag {\n    fn name(&self) -> u32;\n}\n"},
          {"src/defs.rs", "use crate::flag::Flag;\n" + types}};
}

// A base type whose members do nothing by themselves, and what extends it.
Files listeners(std::string_view base, std::string_view member) {
  return repeated(
      3, "src/main/java/shop/{0}/Listener{0}.java",
      fmt::format("package shop.{{0}};\nimport shop.Events;\npublic class Listener{{0}} "
                  "extends Events {{{{\n  public void {}() {{{{ hear(); }}}}\n"
                  "  void hear() {{{{}}}}\n}}}}\n",
                  member),
      {{"src/main/java/shop/Events.java",
        fmt::format("package shop;\npublic {} Events {{\n  public void opened() {{\n"
                    "    int a = 1;\n    int b = a;\n    int c = b;\n    use(c);\n  }}\n"
                    "  void use(int a) {{}}\n}}\n",
                    base)}});
}

// Functions of a module, and the value that their bodies name.
Files registering(std::string_view stem, std::string_view value) {
  std::string functions;
  for (const char letter : {'a', 'b', 'c'}) {
    functions += fmt::format("def {}_{}(given):\n    {}[given] = 1\n\n", stem, letter, value);
  }
  return {
      {"shop/store.py", "all_given = dict()\nlimit = 3\n\ndef given():\n    return all_given\n"},
      {"shop/entry.py", "from shop.store import all_given, limit\n\n" + functions}};
}

// A class with a field and a method that is given something.
Files keeper(std::string_view base, std::string_view field, std::string_view method) {
  return {{"app/Keeper.php",
           fmt::format("<?php\nnamespace App;\nclass Keeper{}\n{{\n    {}\n"
                       "    public function {}(string $event, callable $action)\n    {{\n"
                       "        $this->kept[$event][] = $action;\n    }}\n}}\n",
                       base, field, method)}};
}

Files loader(std::string_view path, std::string_view text) {
  return {{std::string(path), std::string(text)}};
}

std::vector<Case> registry_cases() {
  return {
      {"FunctionsThatRegisterInAValue", registering("register", "all_given"), "shop/entry.py",
       "registers", true},
      {"ValuesThatFunctionsRegisterIn", registering("register", "all_given"), "shop/store.py",
       "registered_in", true},
      {"FunctionsThatOnlyFillAValue", registering("count", "all_given"), "shop/entry.py",
       "registers", false},
      {"FunctionsThatNameANumber", registering("register", "limit"), "shop/entry.py", "registers",
       false},
      {"NumbersThatFunctionsName", registering("register", "limit"), "shop/store.py",
       "registered_in", false},
      {"FunctionsThatSeveralRegisterWith", callers("Start"), "core/core.go", "registers", true},
      {"TypesThatKeepWhatTheyAreGiven", keeper("", "private array $kept = [];", "listenTo"),
       "app/Keeper.php", "registers", true},
      {"TypesThatKeepNothing", keeper("", "private int $kept = 2;", "listenTo"), "app/Keeper.php",
       "registers", false},
      {"TypesThatAreAskedByTheirBase",
       keeper(" extends ServiceProvider", "private array $kept = [];", "register"),
       "app/Keeper.php", "registers", false},
      {"CodeThatIsLoadedAndLookedUp",
       loader("src/load.c",
              "#include <dlfcn.h>\nint load(const char *path) {\n  void *all = dlopen(path, 1);\n"
              "  return all && dlsym(all, \"start\");\n}\n"),
       "src/load.c", "loads_by_name", true},
      {"CodeThatIsImportedByName",
       loader("shop/late.py",
              "import importlib\n\ndef late():\n    return importlib.import_module(\"shop\")\n"),
       "shop/late.py", "loads_by_name", false},
      {"LoadersOfAFramework",
       loader("src/main/java/shop/Parts.java",
              "package shop;\nimport org.pf4j.DefaultPluginManager;\n"
              "public class Parts extends DefaultPluginManager {}\n"),
       "src/main/java/shop/Parts.java", "loads_by_name", true},
  };
}

// A protocol, and classes that never name it.
Files shaped(std::string_view second) {
  return repeated(2, "shop/kinds/{0}.py",
                  fmt::format("class Kind{{0}}:\n    def first(self):\n        return 1\n\n"
                              "    def {}(self):\n        return 2\n",
                              second),
                  {{"shop/kind.py",
                    "from typing import Protocol\n\n\nclass Kind(Protocol):\n"
                    "    def first(self) -> int: ...\n    def second(self) -> int: ...\n"}});
}

std::string uses_of_options(std::string_view user) {
  std::string fields;
  for (char letter = 'a'; letter < 'j'; ++letter) {
    fields += fmt::format("  private Options{0}? {0};\n", letter);
  }
  return fmt::format("namespace Shop.Options;\npublic class {}\n{{\n{}}}\n", user, fields);
}

// A type without members of its own, and many beside it that extend it.
Files family(std::string_view head) {
  return repeated(
      9, "Shop/Options/Options{0}.cs",
      "namespace Shop.Options;\npublic class Options{0} : Base {{ public int All {{ get; set; }} "
      "}}\n"
      "public class Used{0} {{ private Options{0}? one; }}\n",
      {{"Shop/Options/Base.cs",
        fmt::format(
            "namespace Shop.Options;\npublic {} Base {{ public int Size {{ get; set; }} }}\n",
            head)},
       {"Shop/A.cs", uses_of_options("A")},
       {"Shop/B.cs", uses_of_options("B")},
       {"Shop/C.cs", uses_of_options("C")},
       {"Shop/D.cs", uses_of_options("D")}});
}

// An interface that the product asks for and tests implement.
Files tried(std::size_t tests) {
  return repeated(
      tests, "src/test/java/shop/Heard{0}Test.java",
      "package shop;\npublic class Heard{0}Test implements Hears {{\n"
      "  public void hear(int a) {{}}\n}}\n",
      repeated(2, "src/main/java/shop/Use{0}.java",
               "package shop;\npublic class Use{0} {{\n  private Hears hears;\n}}\n",
               {{"src/main/java/shop/Hears.java",
                 "package shop;\npublic interface Hears {\n  void hear(int a);\n}\n"}}));
}

// Jobs that are given a type, which others may name, too.
Files jobs(std::size_t others) {
  return repeated(
      others, "shop/pages/{0}.go",
      "package pages\n\nimport \"shop/core\"\n\nfunc Page{0}(all core.Setup) {{}}\n",
      repeated(
          6, "jobs/{0}/job.go",
          "package {0}\n\nimport \"shop/core\"\n\ntype Job struct{{}}\n\n"
          "func (j *Job) Run(all core.Setup) error {{\n\treturn nil\n}}\n",
          {{"go.mod", "module shop\n\ngo 1.22\n"},
           {"core/setup.go", "package core\n\ntype Setup struct {\n\tName string\n}\n"},
           {"core/job.go", "package core\n\ntype Job interface {\n\tRun(all Setup) error\n}\n"}}));
}

// A struct, and files with a value of it; one announces it first.
Files tables_of(std::string_view fields, std::string_view value) {
  const std::string text = fmt::format(
      "#include \"ops.h\"\nstatic struct ops {{0}}_ops;\n"
      "int open_{{0}}(int a) {{{{ return {{0}}_ops.size; }}}}\n"
      "static struct ops {{0}}_ops = {{{{ {} }}}};\n",
      value);
  return repeated(2, "{0}.c", text,
                  {{"ops.h", fmt::format("struct ops {{\n  int size;\n{}}};\n", fields)}});
}

// A trait of PHP, which classes are made of rather than implement.
Files parts_of(std::string_view kind, std::string_view base, std::string_view used) {
  return repeated(
      3, "app/{0}/Kind{0}.php",
      fmt::format("<?php\nnamespace App\\{{0}};\nuse App\\Part;\n"
                  "class Kind{{0}} {}\n{{{{\n{}    public function made(): int\n    {{{{\n"
                  "        return 1;\n    }}}}\n}}}}\n",
                  base, used),
      {{"app/Part.php",
        fmt::format("<?php\nnamespace App;\n{} Part\n{{\n"
                    "    abstract public function made(): int;\n\n"
                    "    public function twice(): int\n    {{\n        return 2;\n    }}\n}}\n",
                    kind)}});
}

// Interfaces that extend one, or classes that implement it.
Files widened(std::string_view head) {
  return repeated(
      3, "src/{0}/kind.ts",
      fmt::format("import {{{{ Kind }}}} from '../kind';\nexport {} {{{{\n"
                  "  draw(): void;\n}}}}\n",
                  head),
      {{"src/kind.ts", "export interface Kind {\n  name: string;\n  draw(): void;\n}\n"}});
}

// Kinds of one contract, all of which one file makes, and `users` of each.
Files kinds(std::size_t users) {
  std::string made;
  for (const char letter : {'a', 'b', 'c'}) {
    made += fmt::format("    all.add(new shop.{0}.Kind{0}());\n", letter);
  }
  Files files{{"src/main/java/shop/Kind.java",
               "package shop;\npublic interface Kind {\n  int size();\n}\n"},
              {"src/main/java/shop/Kinds.java",
               "package shop;\nimport java.util.List;\npublic class Kinds {\n"
               "  void fill(List<Kind> all) {\n" +
                   made + "  }\n}\n"}};
  for (std::size_t at = 0; at < users; ++at) {
    files.emplace_back(fmt::format("src/main/java/shop/use/Use{}.java", at),
                       fmt::format("package shop.use;\nimport shop.a.Kinda;\nimport shop.b.Kindb;\n"
                                   "import shop.c.Kindc;\npublic class Use{} {{\n"
                                   "  Kinda a;\n  Kindb b;\n  Kindc c;\n}}\n",
                                   at));
  }
  return repeated(3, "src/main/java/shop/{0}/Kind{0}.java",
                  "package shop.{0};\nimport shop.Kind;\npublic class Kind{0} implements Kind {{\n"
                  "  public int size() {{ return 1; }}\n}}\n",
                  std::move(files));
}

Files records(std::size_t count) {
  std::string rows;
  for (std::size_t at = 0; at < count; ++at) {
    rows += fmt::format("  {{ id: '{0}', label: 'Label {0}', wide: {0} }},\n", at);
  }
  return {{"src/kinds.ts", "export const kinds = [\n" + rows + "];\n"}};
}

std::vector<Case> contract_cases() {
  return {
      {"ProtocolsThatTypesHaveTheShapeOf", shaped("second"), "shop/kind.py", "implemented", true},
      {"ProtocolsThatTypesHaveHalfOf", shaped("other"), "shop/kind.py", "implemented", false},
      {"AbstractBasesOfAFamily", family("abstract class"), "Shop/Options/Base.cs", "extended",
       true},
      {"BasesOfAFamilyThatManyName", family("class"), "Shop/Options/Base.cs", "extended", false},
      {"ContractsThatTestsImplement", tried(2), "src/main/java/shop/Hears.java",
       "implemented_in_tests", true},
      {"ContractsThatOneTestImplements", tried(1), "src/main/java/shop/Hears.java",
       "implemented_in_tests", false},
      {"WhatImplementersAreGiven", jobs(1), "core/setup.go", "given_to_implementers", true},
      {"WhatOthersAreGivenToo", jobs(6), "core/setup.go", "given_to_implementers", false},
      {"StructsOfFunctions", tables_of("  int (*open)(int);\n  int (*shut)(int);\n", "1, 0, 0"),
       "ops.h", "implemented", true},
      {"StructsOfNumbers", tables_of("  int first;\n  int last;\n", "1, 0, 0"), "ops.h",
       "implemented", false},
      {"BasesWithMembersToFill", parts_of("abstract class", "extends Part", ""), "app/Part.php",
       "implemented", true},
      {"TraitsThatAskForAMember", parts_of("trait", "", "    use Part;\n"), "app/Part.php",
       "implemented", false},
      {"InterfacesThatClassesImplement", widened("abstract class Kind{0} implements Kind"),
       "src/kind.ts", "implemented", true},
      {"InterfacesThatInterfacesExtend", widened("interface Kind{0} extends Kind"), "src/kind.ts",
       "implemented", false},
      {"WhatMakesTheKindsOfAContract", kinds(0), "src/main/java/shop/Kinds.java",
       "gathers_implementers", true},
      {"WhatMakesKindsThatAllName", kinds(5), "src/main/java/shop/Kinds.java",
       "gathers_implementers", false},
      {"ContractsOfSeveralFolders", kinds(0), "src/main/java/shop/Kind.java",
       "implemented_in_folders", true},
      {"TablesOfRecords", records(14), "src/kinds.ts", "table_of_records", true},
      {"TablesOfFewRecords", records(6), "src/kinds.ts", "table_of_records", false},
  };
}

std::vector<Case> cases() {
  return {
      {"InterfacesOfOneMethodThatIsImported",
       named("import \"shop/core\"\n\nvar known = core.Known\n\n"), "core/core.go", "implemented",
       true},
      {"InterfacesOfOneMethodByChance", named(""), "core/core.go", "implemented", false},
      {"FunctionsCalledOnLoad", callers("init"), "core/core.go", "called_on_load", true},
      {"FunctionsCalledLater", callers("Start"), "core/core.go", "called_on_load", false},
      {"TablesOfFunctions", table(6), "format.c", "table_of_its_own", true},
      {"TablesOfFewFunctions", table(3), "format.c", "table_of_its_own", false},
      {"WhatAloneNamesManyParts", handlers(7, {}), "shop/main.py", "wires_files", true},
      {"WhatNamesFewParts", handlers(4, {}), "shop/main.py", "wires_files", false},
      {"WhatWiresFewerThanAnother",
       handlers(8, repeated(6, "desk/{0}/rows.py", "def row_{0}(app):\n    return app\n",
                            {{"desk/all.py",
                              "from desk.a.rows import row_a\nfrom desk.b.rows import row_b\n"
                              "from desk.c.rows import row_c\nfrom desk.d.rows import row_d\n"
                              "from desk.e.rows import row_e\nfrom desk.f.rows import row_f\n"
                              "def rows(app):\n    row_a(app)\n    row_b(app)\n    row_c(app)\n"
                              "    row_d(app)\n    row_e(app)\n    row_f(app)\n"}})),
       "desk/all.py", "wires_files", false},
      {"ContractsThatAreLookedUp", looked_up(2), "lib/filter.rb", "looked_up", true},
      {"ServicesThatAllLookUp", looked_up(12), "lib/filter.rb", "looked_up", false},
      {"ContractsOfManyTypesInOneFile", flags(9), "src/flag.rs", "implemented_beside", true},
      {"ContractsOfFewTypesInOneFile", flags(3), "src/flag.rs", "implemented_beside", false},
      {"AbstractTypesWhoseMembersAreFilled", listeners("abstract class", "opened"),
       "src/main/java/shop/Events.java", "implemented", true},
      {"AbstractTypesWhoseMembersAreNot", listeners("abstract class", "other"),
       "src/main/java/shop/Events.java", "implemented", false},
      {"TypesThatAreNotAbstract", listeners("class", "opened"), "src/main/java/shop/Events.java",
       "implemented", false},
  };
}

class ExtensionSignals : public testing::TestWithParam<Case> {};

TEST_P(ExtensionSignals, TellExtensionPointsFromTheirLikes) {
  expect_told(GetParam(), [](const WikiGenerator& generator) -> const ScoreSheet& {
    return generator.extensions();
  });
}

INSTANTIATE_TEST_SUITE_P(Registries, ExtensionSignals, testing::ValuesIn(registry_cases()),
                         [](const auto& one) { return one.param.name; });
INSTANTIATE_TEST_SUITE_P(Contracts, ExtensionSignals, testing::ValuesIn(contract_cases()),
                         [](const auto& one) { return one.param.name; });
INSTANTIATE_TEST_SUITE_P(Pages, ExtensionSignals, testing::ValuesIn(cases()),
                         [](const auto& one) { return one.param.name; });

}  // namespace
}  // namespace kestrix
