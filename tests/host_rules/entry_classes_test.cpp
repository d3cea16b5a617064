// Which classes of entry points the flows page finds by itself, by what makes files one class.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host_rules/answered_repository.h"

namespace kestrix {
namespace {

using Files = AnsweredRepository::Files;
using Strings = std::vector<std::string>;

Strings classes_of(const Files& files) {
  const AnsweredRepository repository(files);
  Strings names;
  for (const FlowClass& each : flows_answer(repository.generator(), {}).classes) {
    names.push_back(each.entry_points);
  }
  return names;
}

struct Case {
  const char* what;
  Files files;
  Strings classes;
};

void expect(const std::vector<Case>& cases) {
  for (const Case& each : cases) EXPECT_EQ(classes_of(each.files), each.classes) << each.what;
}

// One file for each name, "{}" in the path and the text replaced by it.
Files each_of(const Strings& names, const std::string& path, const std::string& text) {
  const auto filled = [](std::string form, const std::string& name) {
    for (std::size_t at = 0; (at = form.find("{}", at)) != std::string::npos; at += name.size()) {
      form.replace(at, 2, name);
    }
    return form;
  };
  Files files;
  for (const std::string& name : names) files.emplace_back(filled(path, name), filled(text, name));
  return files;
}

Files together(Files files, const Files& more) {
  files.insert(files.end(), more.begin(), more.end());
  return files;
}

const Strings kNames{"Red", "Green", "Blue", "Grey"};

TEST(EntryClasses, OfWhatFilesHaveInCommon) {
  const Files directives{{"go.mod", "module example.org/m\n"},
                         {"conf/conf.go",
                          "package conf\nvar all = map[string]func(){}\n"
                          "func Register(name string, run func()) { all[name] = run }\n"
                          "func Helper() int { return 1 }\n"}};
  const std::string init =
      "package {}\nimport \"example.org/m/conf\"\n"
      "func init() { conf.Register(\"{}\", run) }\nfunc run() { conf.Helper() }\n";
  const std::string later =
      "package {}\nimport \"example.org/m/conf\"\nfunc Start() { conf.Register(\"{}\", nil) }\n";
  const Files record{{"mode.h", "struct mode {\n  int id;\n  void (*run)(int);\n};\n"}};
  const std::string table =
      "#include \"mode.h\"\nstatic void run_{}(int x) { (void)x; }\n"
      "const struct mode mode_{} = {\n  .id = 1,\n  .run = run_{},\n};\n";
  const std::string announced =
      "#include \"mode.h\"\nstatic struct mode mode_{};\nstatic void run_{}(int x) { (void)x; }\n"
      "static struct mode mode_{} = {\n  .id = 1,\n  .run = run_{},\n};\n";
  const std::string pointer = "#include \"mode.h\"\nstatic struct mode *mode_{};\nint {}(void);\n";
  const Files work{
      {"app/work.py", "TASKS = []\ndef task(run):\n  TASKS.append(run)\n  return run\n"},
      {"app/errors.py", "class AppError(Exception): pass\n"}};
  const std::string failing =
      "from app.work import task\nfrom app.errors import AppError\nclass Lost{}(AppError): pass\n"
      "@task\ndef go(): raise Lost{}()\n@task\ndef come(): pass\n";
  const Files plugin{{"src/plugin.ts", "export function define(p: object) { return p }\n"},
                     {"src/Page.ts", "export const page = 1\n"}};
  expect({
      {"Go files that register themselves when they are loaded",
       together(directives, each_of(kNames, "mods/{}/directive.go", init)),
       {"mods/**/directive.go"}},
      {"what registers only when somebody asks it to",
       together(directives, each_of(kNames, "mods/{}/directive.go", later)),
       {}},
      {"modules that export what one function makes",
       together(plugin, each_of(kNames, "src/modules/{}/module.ts",
                                "import { define } from '../../plugin'\nimport { page } from "
                                "'../../Page'\nexport default define({ page })\n")),
       {"src/modules/**/module.ts"}},
      {"tables of functions in C",
       together(record, each_of(kNames, "src/mode-{}.c", table)),
       {"src/mode-*.c"}},
      {"tables that are announced first",
       together(record, each_of(kNames, "src/mode-{}.c", announced)),
       {"src/mode-*.c"}},
      {"pointers to tables", together(record, each_of(kNames, "src/mode-{}.c", pointer)), {}},
      {"tasks that declare what they throw beside",
       together(work, each_of(kNames, "app/{}/tasks.py", failing)),
       {"app/**/tasks.py"}},
      {"files of errors alone",
       together(work, each_of(kNames, "app/{}/errors.py",
                              "from app.errors import AppError\nclass Lost{}(AppError): pass\n")),
       {}},
  });
}

const std::string kReport =
    "<?php\nnamespace App\\Report\\{};\nuse App\\Report\\Report;\nuse App\\Store;\n"
    "class Month implements Report {\n  public function make() { return (new Store())->load(); "
    "}\n}\n";
const std::string kYear = "<?php\nnamespace App\\Report\\{};\nclass Year extends Month {\n}\n";

TEST(EntryClasses, KeepHeirsOfTheirMembers) {
  const Files base{
      {"composer.json", R"({"autoload": {"psr-4": {"App\\": "app/"}}})"},
      {"app/Store.php", "<?php\nnamespace App;\nclass Store { public function load() {} }\n"},
      {"app/Report/Report.php",
       "<?php\nnamespace App\\Report;\ninterface Report { public function make(); }\n"}};
  expect({{"a year is a month with nothing added",
           together(together(base, each_of(kNames, "app/Report/{}/Month.php", kReport)),
                    each_of(kNames, "app/Report/{}/Year.php", kYear)),
           {"app/Report/**/*.php"}}});
  const AnsweredRepository repository(
      together(together(base, each_of(kNames, "app/Report/{}/Month.php", kReport)),
               each_of(kNames, "app/Report/{}/Year.php", kYear)));
  const FlowsAnswer answer = flows_answer(repository.generator(), {});
  ASSERT_EQ(answer.classes.size(), 1U);
  EXPECT_EQ(answer.classes.front().roots.size(), 8U);
}

TEST(EntryClasses, LeaveToOthersWhatIsTheirs) {
  // Jobs are services that a framework calls, too.
  const Files base{
      {"composer.json", R"({"autoload": {"psr-4": {"App\\": "app/"}}})"},
      {"app/Store.php", "<?php\nnamespace App;\nclass Store { public function load() {} }\n"},
      {"app/Service.php",
       "<?php\nnamespace App;\nabstract class Service { abstract public function execute(); }\n"}};
  const std::string service =
      "<?php\nnamespace App\\Services;\nuse App\\Service;\nuse App\\Store;\n"
      "class {} extends Service {\n  public function execute() { return (new Store())->load(); "
      "}\n}\n";
  const std::string job =
      "<?php\nnamespace App\\Jobs;\nuse App\\Service;\nuse App\\Store;\n"
      "use Illuminate\\Contracts\\Queue\\ShouldQueue;\n"
      "class {} extends Service implements ShouldQueue {\n"
      "  public function execute() { return (new Store())->load(); }\n}\n";
  const Strings names{"A", "B", "C", "D", "E", "F", "G", "H"};
  expect({{"both",
           together(together(base, each_of(names, "app/Services/Make{}.php", service)),
                    each_of(kNames, "app/Jobs/Send{}.php", job)),
           {"app/Services/*.php", "app/Jobs/*.php"}}});
}

TEST(EntryClasses, OfWhatFrameworksFind) {
  const std::string page =
      "<template><p>{}</p></template>\n<script setup>\nconst n = 1\n</script>\n";
  const std::string screen = "export default function {}() { return null }\n";
  const auto manifest = [](const std::string& path, const std::string& package) {
    return Files{{path, R"({"name": "a", "dependencies": {")" + package + R"(": "1"}})"}};
  };
  expect({
      {"pages of a package that has the framework",
       together(manifest("web/package.json", "nuxt"), each_of(kNames, "web/pages/{}.vue", page)),
       {"web/pages/*.vue"}},
      {"pages of one that has none",
       together(manifest("web/package.json", "vue"), each_of(kNames, "web/pages/{}.vue", page)),
       {}},
      {"a server's pages",
       together(manifest("package.json", "@inertiajs/vue3"),
                each_of(kNames, "resources/js/Pages/{}/Show.vue", page)),
       {"resources/js/Pages/**/Show.vue"}},
      {"screens below the folder of screens, and nothing beside it",
       together(manifest("apps/app/package.json", "expo-router"),
                together(each_of(kNames, "apps/app/app/{}/index.tsx", screen),
                         each_of(kNames, "apps/app/parts/{}.tsx", screen))),
       {"apps/app/app/**/index.tsx"}},
      {"templates that no language reads",
       together({{"src/Admin/Program.cs", "class Program { static void Main() {} }\n"}},
                each_of(kNames, "src/Admin/Pages/{}.razor", "@page \"/{}\"\n<h1>{}</h1>\n")),
       {"src/Admin/Pages/*.razor"}},
      {"two workers, of which one bears a mark, too",
       {{"app/SyncWorker.kt",
         "package app\nimport androidx.hilt.work.HiltWorker\nimport androidx.work.CoroutineWorker\n"
         "@HiltWorker\nclass SyncWorker : CoroutineWorker() { fun work() {} }\n"},
        {"app/OtherWorker.kt",
         "package app\nimport androidx.work.CoroutineWorker\n"
         "class OtherWorker : CoroutineWorker() { fun work() {} }\n"},
        {"app/Main.kt", "package app\nfun main() {}\n"}},
       {"app/*Worker.kt"}},
  });
}

TEST(EntryClasses, OfRoutersAndReceivers) {
  const Files module{{"go.mod", "module example.org/m\n"},
                     {"store/store.go", "package store\nfunc Load() int { return 1 }\n"},
                     {"ui/ui.go", "package ui\ntype handler struct { n int }\n"}};
  const std::string method =
      "package ui\nimport \"example.org/m/store\"\n"
      "func (h *handler) show{}() int { return store.Load() }\n";
  const std::string holder =
      "package {}\nimport \"example.org/m/ui\"\nfunc Start(h *ui.Handler) { _ = h }\n";
  const Files service{{"go.mod", "module example.org/m\n"},
                      {"store/store.go", "package store\nfunc Load() int { return 1 }\n"},
                      {"ui/ui.go", "package ui\ntype Handler struct { n int }\n"}};
  const Files store{{"app/store.py", "def load(key):\n  return key\n"}};
  const Files widgets{
      {"src/widget.h",
       "class Widget {\n public:\n  virtual ~Widget() {}\n  virtual void draw() = 0;\n};\n"},
      {"src/paint.h", "void paint(int color);\n"},
      {"src/paint.cpp", "#include \"paint.h\"\nvoid paint(int color) { (void)color; }\n"}};
  expect({
      {"files that give methods to what answers requests",
       together(module, each_of(kNames, "ui/page_{}.go", method)),
       {"ui/page_*.go"}},
      {"files that give methods to what others pass around",
       together(
           together(service, each_of(kNames, "ui/page_{}.go",
                                     "package ui\nimport \"example.org/m/store\"\n"
                                     "func (h *Handler) Show{}() int { return store.Load() }\n")),
           each_of(kNames, "cmd/{}/start.go", holder)),
       {}},
      {"blueprints",
       together(store, each_of(kNames, "app/{}/pages.py",
                               "from flask import Blueprint\nfrom app.store import load\n"
                               "bp = Blueprint('{}', __name__)\n@bp.route('/')\n"
                               "def show():\n  return load(1)\n")),
       {"app/**/pages.py"}},
      {"routers",
       each_of(kNames, "routes/{}.js",
               "const express = require('express');\nconst router = express.Router();\n"
               "router.get('/', (req, res) => res.send('{}'));\nmodule.exports = router;\n"),
       {"routes/*.js"}},
      {"routers that are all that their package gives",
       each_of(kNames, "routes/{}.ts",
               "import Router from 'koa-router';\nconst router = new Router();\n"
               "router.post('/{}', (ctx) => { ctx.body = 1; });\nexport default router;\n"),
       {"routes/*.ts"}},
      {"classes that headers declare act in their sources",
       together(widgets,
                together(each_of(kNames, "src/{}.h",
                                 "#include \"widget.h\"\nclass {} : public Widget {\n public:\n"
                                 "  void draw() override;\n};\n"),
                         each_of(kNames, "src/{}.cpp",
                                 "#include \"{}.h\"\n#include \"paint.h\"\n"
                                 "void {}::draw() { paint(1); }\n"))),
       {"src/{Blue,Green,Grey,Red}.cpp"}},
      {"helpers of one name that each file has for itself",
       together(widgets,
                each_of(kNames, "lex/{}.cpp",
                        "#include \"paint.h\"\nbool is_word(int c) { paint(c); return c > 1; }\n"
                        "void lex{}(int c) { if (is_word(c)) paint(2); }\n")),
       {}},
      {"requests that a framework fills",
       together(
           {{"composer.json", R"({"autoload": {"psr-4": {"App\\": "app/"}}})"},
            {"app/Requests/Request.php",
             "<?php\nnamespace App\\Requests;\nuse Illuminate\\Foundation\\Http\\FormRequest;\n"
             "abstract class Request extends FormRequest {\n"
             "  abstract public function rules();\n}\n"}},
           each_of(kNames, "app/Requests/Api/{}.php",
                   "<?php\nnamespace App\\Requests\\Api;\nuse App\\Requests\\Request;\n"
                   "class {} extends Request {\n  public function rules() { return []; }\n}\n")),
       {}},
  });
}

TEST(EntryClasses, OfMarksThatSomebodyLooksFor) {
  const Files marks{
      {"src/a/Store.java", "package a;\npublic class Store { public void load() {} }\n"},
      {"src/a/Finder.java", "package a;\npublic @interface Finder { String value(); }\n"}};
  const Files finders = together(
      marks, each_of(kNames, "src/a/finders/{}Finder.java",
                     "package a.finders;\nimport a.Finder;\nimport a.Store;\n@Finder(\"{}\")\n"
                     "public class {}Finder {\n  public void find() { new Store().load(); }\n}\n"));
  const Files registry{{"src/a/Registry.java",
                        "package a;\npublic class Registry {\n  public void start(Context c) {\n"
                        "    c.beansWith(Finder.class);\n  }\n}\n"}};
  expect({{"looked up", together(finders, registry), {"src/a/finders/*Finder.java"}},
          {"for readers alone", finders, {}}});
}

TEST(EntryClasses, ComeApartWhereOthersLeadToThem) {
  // Twelve views of each part of a product, which one table names; alike in all but who does.
  const auto views = [](const std::string& part) {
    Files files;
    std::string table;
    std::string list = "VIEWS = [";
    for (char view = 'a'; view < 'm'; ++view) {
      const std::string name = part + "_" + std::string(1, view);
      files.emplace_back("app/" + part + "/" + name + "/views.py",
                         "from django.views.generic import View\n"
                         "class Show(View):\n  def get(self): return 1\n");
      table += "from app." + part + "." + name + " import views as " + name + "\n";
      list += name + ".Show, ";
    }
    files.emplace_back("app/" + part + "/table.py", table + list + "]\n");
    return files;
  };
  expect({{"two parts",
           together(views("office"), views("shop")),
           {"app/office/**/views.py", "app/shop/**/views.py"}}});

  Files commands{{"go.mod", "module example.org/m\n"}};
  for (char group = 'a'; group < 'k'; ++group) {
    const std::string name = std::string("group") + group;
    std::string imports;
    std::string calls;
    for (const std::string each : {"list", "show", "edit"}) {
      const std::string package = name + each;
      commands.emplace_back("cmd/" + name + "/" + package + "/" + package + ".go",
                            "package " + package +
                                "\nimport \"github.com/spf13/cobra\"\nfunc New() *cobra.Command {\n"
                                "  return &cobra.Command{Use: \"x\"}\n}\n");
      imports.append("import \"example.org/m/cmd/").append(name).append("/");
      imports.append(package).append("\"\n");
      calls.append("  c.AddCommand(").append(package).append(".New())\n");
    }
    commands.emplace_back("cmd/" + name + "/" + name + ".go",
                          "package " + name + "\nimport \"github.com/spf13/cobra\"\n" + imports +
                              "func New() *cobra.Command {\n  c := &cobra.Command{Use: \"x\"}\n" +
                              calls + "  return c\n}\n");
  }
  const AnsweredRepository repository(commands);
  const FlowsAnswer answer = flows_answer(repository.generator(), {});
  std::vector<std::size_t> sizes;
  for (const FlowClass& each : answer.classes) sizes.push_back(each.roots.size());
  EXPECT_THAT(sizes, testing::UnorderedElementsAre(30, 10));
}

}  // namespace
}  // namespace kestrix
