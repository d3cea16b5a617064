// What leads to a class of entry points that was asked for, by what shows it, and what only looks
// like it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host_rules/answered_repository.h"

namespace kestrix {
namespace {

using Files = AnsweredRepository::Files;

struct Case {
  const char* what;
  Files files;
  std::string entry_points;
  std::string shown;
  std::string kind;   ///< of the reason for `shown`
  std::string decoy;  ///< must not be shown
};

std::vector<Pick> answer_of(const Case& each) {
  const AnsweredRepository repository(each.files);
  const std::vector<std::string> patterns{each.entry_points};
  const FlowsAnswer answer = flows_answer(repository.generator(), patterns);
  std::vector<Pick> picks = answer.classes.at(0).files;
  for (const Pick& pick : answer.classes.at(0).further) picks.push_back(pick);
  return picks;
}

void expect_all(const std::vector<Case>& cases) {
  for (const Case& each : cases) {
    const std::vector<Pick> picks = answer_of(each);
    EXPECT_NE(reason_of(picks, each.shown, each.kind), "")
        << each.what << ": " << testing::PrintToString(paths_of(picks));
    EXPECT_THAT(paths_of(picks), testing::Not(testing::Contains(each.decoy))) << each.what;
  }
}

Files with(Files files, const Files& more) {
  files.insert(files.end(), more.begin(), more.end());
  return files;
}

Files each_of(const std::vector<std::string>& names, const std::string& before,
              const std::string& after, const std::string& text) {
  Files files;
  for (const std::string& name : names) {
    std::string own = text;
    for (auto at = own.find('%'); at != std::string::npos; at = own.find('%')) {
      own.replace(at, 1, name);
    }
    files.emplace_back(before + name + after, own);
  }
  return files;
}

TEST(Dispatch, NamesTheEntryPoints) {
  const std::vector<std::string> many{"Add", "Bow", "Cut", "Dig", "Eat", "Fix", "Get", "Hop",
                                      "Ink", "Jam", "Kit", "Log", "Mix", "Nod", "Own", "Pin"};
  std::string table = "<?php\nuse App\\Web\\Add;\nuse App\\Web\\Bow;\nuse App\\Web\\Cut;\n";
  std::string routes = "<?php\n";
  for (const std::string& name : many) routes += "use App\\Web\\" + name + ";\n";
  routes += "return [";
  for (const std::string& name : many) routes += "[" + name + "::class, 'run'], ";
  const Files pages =
      each_of(many, "app/Web/", ".php",
              "<?php\nnamespace App\\Web;\nclass % { public function run() { return 1; } }\n");
  expect_all({
      {"a small table beside one that names them all",
       with(pages, {{"routes/web.php", routes + "];\n"},
                    {"routes/api.php", table + "return [[Add::class, 'run'], [Bow::class, 'run'], "
                                               "[Cut::class, 'run']];\n"},
                    {"app/One.php", "<?php\nuse App\\Web\\Add;\n$one = new Add();\n"}}),
       "app/Web/*.php", "routes/api.php", "names_entry_points", "app/One.php"},
      {"of two entry points, who alone calls what they have",
       {{"web.c", "int web_open(int f) { return f; }\nint web_free(int f) { return f; }\n"},
        {"tty.c", "int tty_open(int f) { return f; }\nint tty_free(int f) { return f; }\n"},
        {"main.c",
         "int web_open(int f);\nint tty_open(int f);\n"
         "int main() { return web_open(1) + tty_open(1); }\n"},
        {"a.c", "int web_free(int f);\nint a() { return web_free(1); }\n"},
        {"b.c", "int web_free(int f);\nint b() { return web_free(1); }\n"},
        {"c.c", "int web_free(int f);\nint c() { return web_free(1); }\n"},
        {"d.c", "int tty_free(int f);\nint d() { return tty_free(1); }\n"},
        {"e.c", "int tty_free(int f);\nint e() { return tty_free(1); }\n"},
        {"f.c", "int tty_free(int f);\nint f() { return tty_free(1); }\n"}},
       "{web,tty}.c",
       "main.c",
       "names_entry_points",
       "a.c"},
  });
}

TEST(Dispatch, HasTheTypesThatTheyComeFrom) {
  const std::string header =
      "#pragma once\n#include \"handler.h\"\nclass % : public Handler {\n public:\n"
      "  void start() override;\n};\n";
  const std::string source = "#include \"%.h\"\nvoid %::start() {}\n";
  const std::vector<std::string> two{"Tree", "Text"};
  const Files handlers =
      with(each_of(two, "src/", ".h", header), each_of(two, "src/", ".cc", source));
  const std::string tasks =
      "from app.errors import TaskError\nclass %Error(TaskError): pass\ndef run(): raise "
      "%Error()\n";
  expect_all({
      {"declared in a header beside the source",
       with(handlers,
            {{"src/handler.h",
              "#pragma once\nclass Handler {\n public:\n"
              "  virtual void start() = 0;\n};\n"},
             {"src/parser.cc", "#include \"handler.h\"\nvoid parse(Handler& to) { to.start(); }\n"},
             {"src/other.cc", "int other() { return 1; }\n"}}),
       "src/{Tree,Text}.cc", "src/parser.cc", "holds_entry_points", "src/other.cc"},
      {"the errors that they raise are none",
       with(each_of({"a", "b", "c"}, "app/tasks/", ".py", tasks),
            {{"app/errors.py", "class TaskError(Exception): pass\n"},
             {"app/table.py", "from app.tasks import a, b, c\nTASKS = [a.run, b.run, c.run]\n"}}),
       "app/tasks/*.py", "app/table.py", "names_entry_points", "app/errors.py"},
  });
}

TEST(Dispatch, HasTheBaseOfAGroup) {
  const Files pages =
      with(each_of({"A", "B", "C", "D", "E", "F", "G", "H", "I"}, "app/controllers/",
                   "_controller.rb", "class %Controller < PageController\nend\n"),
           each_of({"X", "Y", "Z"}, "app/controllers/", "_controller.rb",
                   "class %Controller < AdminController\n  include Logs\nend\n"));
  expect_all({
      {"which extends the base of all; no module that a group takes in",
       with(pages, {{"app/web/page_controller.rb", "class PageController\nend\n"},
                    {"app/web/admin_controller.rb", "class AdminController\nend\n"},
                    {"app/web/logs.rb", "module Logs\n  def log(what) = puts(what)\nend\n"}}),
       "app/controllers/*_controller.rb", "app/web/admin_controller.rb", "entry_point_base",
       "app/web/logs.rb"},
  });
}

TEST(Dispatch, StartsWhereItsFrameworkSays) {
  const Files web = each_of({"users", "posts", "tags"}, "app/controllers/", "_controller.rb",
                            "class %Controller < ApplicationController\nend\n");
  expect_all({
      {"not where other entry points are listed",
       with(with(web, each_of({"Mail", "Clean"}, "app/jobs/", "_job.rb",
                              "class %Job < ApplicationJob\n  def perform = nil\nend\n")),
            {{"config/application.rb",
              "module App\n  class Application < Rails::Application\n"
              "  end\nend\n"},
             {"config/routes.rb",
              "Rails.application.routes.draw do\n  get '/u', to: 'users#index'\n"
              "  get '/p', to: 'posts#index'\n  get '/t', to: 'tags#index'\nend\n"}}),
       "app/jobs/*_job.rb", "config/application.rb", "framework_start", "config/routes.rb"},
      {"among the pages, not where another product's pages start",
       with(each_of({"home", "shop", "user"}, "phone/app/", "/index.tsx",
                    "export default function Page() { return <p>%</p>; }\n"),
            {{"phone/app/_layout.tsx", "export default function Layout() { return <main />; }\n"},
             {"site/app/layout.tsx", "export default function Layout() { return <main />; }\n"}}),
       "phone/app/**/index.tsx", "phone/app/_layout.tsx", "framework_start", "site/app/layout.tsx"},
  });
}

TEST(Dispatch, IsListedWithoutCode) {
  const Files jobs = each_of({"Mail", "Clean", "Sync"}, "app/jobs/", "Job.rb",
                             "class %Job < ApplicationJob\n  def perform = nil\nend\n");
  const Files tools = each_of({"parse", "read"}, "util/", ".cpp", "int main() { return 0; }\n");
  expect_all({
      {"a schedule that names types",
       with(jobs, {{"config/recurring.yml",
                    "mail:\n  class: MailJob\n  every: 1h\nclean:\n  class: CleanJob\n"},
                   {"config/other.yml", "mail: Clean\nsync: 5\n"}}),
       "app/jobs/*Job.rb", "config/recurring.yml", "table_of_entry_points", "config/other.yml"},
      {"programs beside their list",
       with(with(tools, each_of({"api", "tree", "text", "list"}, "src/", ".cpp",
                                "int %() { return 0; }\n")),
            {{"util/CMakeLists.txt",
              "add_executable(parse parse.cpp)\nadd_executable(read read.cpp)\n"}}),
       "util/*.cpp", "util/CMakeLists.txt", "table_of_entry_points", "CMakeLists.txt"},
      {"not by what lists all sources",
       with(each_of({"api", "tree", "text", "list"}, "src/", ".cpp", "int %() { return 0; }\n"),
            {{"CMakeLists.txt",
              "add_library(all src/api.cpp src/tree.cpp src/text.cpp src/list.cpp)\n"},
             {"src/main.cpp", "int api();\nint tree();\nint main() { return api() + tree(); }\n"}}),
       "src/{api,tree}.cpp", "src/main.cpp", "names_entry_points", "CMakeLists.txt"},
  });
}

TEST(Dispatch, HasWhoCallsIt) {
  const Files handlers =
      each_of({"Mail", "Text", "Call"}, "src/handlers/", "Handler.java",
              "package app.handlers;\npublic class %Handler implements Handler {\n"
              "  public void handle(String what) {}\n}\n");
  expect_all({
      {"through the interface that the manager alone implements",
       with(handlers, {{"src/handlers/Handler.java",
                        "package app.handlers;\npublic interface Handler {\n"
                        "  void handle(String what);\n}\n"},
                       {"src/Manager.java",
                        "package app;\npublic interface Manager { void all(String what); }\n"},
                       {"src/OwnManager.java",
                        "package app;\nimport app.handlers.Handler;\nimport java.util.List;\n"
                        "public class OwnManager implements Manager {\n"
                        "  private List<Handler> handlers;\n"
                        "  public void all(String what) {\n"
                        "    for (Handler each : handlers) each.handle(what);\n  }\n}\n"},
                       {"src/Entry.java",
                        "package app;\npublic class Entry {\n  private final Manager manager;\n"
                        "  public Entry(Manager manager) { this.manager = manager; }\n"
                        "  public void go() { manager.all(\"x\"); }\n}\n"},
                       {"src/Other.java", "package app;\npublic class Other {}\n"}}),
       "src/handlers/*Handler.java", "src/Entry.java", "names_dispatch", "src/Other.java"},
      {"what they take and their table makes, not what the product has everywhere",
       with(each_of({"a", "b", "c"}, "app/cmd/", ".py",
                    "from app.flags import Flags\nfrom app.store import Store\n"
                    "def run(flags: Flags, store: Store) -> int:\n  return 1\n"),
            {{"app/flags.py", "class Flags:\n  quiet = False\n"},
             {"app/store.py", "class Store:\n  path = ''\n"},
             {"app/x.py", "from app.store import Store\ndef x(of: Store): ...\n"},
             {"app/y.py", "from app.store import Store\ndef y(of: Store): ...\n"},
             {"app/z.py", "from app.store import Store\ndef z(of: Store): ...\n"},
             {"app/w.py", "from app.store import Store\ndef w(of: Store): ...\n"},
             {"app/main.py",
              "from app.cmd import a, b, c\nfrom app.flags import Flags\n"
              "def main(flags: Flags):\n  for each in [a.run, b.run, c.run]: each(flags)\n"}}),
       "app/cmd/*.py", "app/flags.py", "taken_by_entry_points", "app/store.py"},
      {"its own header, not another that it includes",
       {{"web.c", "int web_open(int f) { return f; }\n"},
        {"tty.c", "int tty_open(int f) { return f; }\n"},
        {"net.c", "int net_open(int f) { return f; }\n"},
        {"engine.h", "#pragma once\nint engine(int f);\n"},
        {"text.h", "#pragma once\nint text(int f);\n"},
        {"engine.c",
         "#include \"engine.h\"\n#include \"text.h\"\nint web_open(int f);\n"
         "int tty_open(int f);\nint net_open(int f);\nint engine(int f) {\n"
         "  return web_open(f) + tty_open(f) + net_open(f);\n}\n"}},
       "{web,tty,net}.c",
       "engine.h",
       "declares_dispatch",
       "text.h"},
  });
}

TEST(Dispatch, MakesWhatEachOfThemTakes) {
  const std::vector<std::string> three{"Order", "User", "Item"};
  const std::string handler =
      "using MediatR;\nusing App.Requests;\nnamespace App.Features;\n"
      "public class %Handler : IRequestHandler<Get%, string>\n{\n"
      "  public Task<string> Handle(Get% request) { return null; }\n}\n";
  const std::string request = "namespace App.Requests;\npublic class Get% : Request { }\n";
  const Files features =
      with(with(each_of(three, "App/Features/", "Handler.cs", handler),
                each_of(three, "App/Requests/Get", ".cs", request)),
           {{"App/Requests/Request.cs", "namespace App.Requests;\npublic class Request { }\n"}});
  const Files senders{
      {"App/Web/Pages.cs",
       "using App.Requests;\nnamespace App.Web;\npublic class Pages\n{\n"
       "  public void All() { Send(new GetOrder()); Send(new GetUser()); Send(new GetItem()); }\n"
       "}\n"},
      {"App/Web/One.cs",
       "using App.Requests;\nnamespace App.Web;\npublic class One\n{\n"
       "  public void Go() { Send(new GetOrder()); }\n}\n"}};
  expect_all({
      {"of several", with(features, senders), "App/Features/*Handler.cs", "App/Web/Pages.cs",
       "makes_what_they_take", "App/Web/One.cs"},
      {"what that comes from", with(features, senders), "App/Features/*Handler.cs",
       "App/Requests/Request.cs", "base_of_what_they_take", "App/Requests/GetUser.cs"},
  });
}

TEST(Dispatch, IsOneFileForEachEntryPoint) {
  const std::vector<std::string> names{"Bill", "Cart", "Note", "Page", "Shop", "User"};
  const Files observers = each_of(names, "app/Observers/", "Observer.php",
                                  "<?php\nnamespace App\\Observers;\n"
                                  "class %Observer { public function created() {} }\n");
  const Files models = each_of(names, "app/Models/", ".php",
                               "<?php\nnamespace App\\Models;\nuse App\\Observers\\%Observer;\n"
                               "#[ObservedBy([%Observer::class])]\nclass % {}\n");
  expect_all({
      {"in one folder",
       with(with(observers, models), {{"app/Other.php", "<?php\nclass Other {}\n"}}),
       "app/Observers/*Observer.php", "app/Models/Note.php", "names_its_entry_point",
       "app/Other.php"},
  });
}

}  // namespace
}  // namespace kestrix
