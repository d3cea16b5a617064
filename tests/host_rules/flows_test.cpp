// The doors of small repositories: which classes the page finds by itself, and what leads to them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "kestrix/host/pages.h"
#include "kestrix/index/refresh/indexer.h"
#include "tests/index/scratch.h"

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;
using Files = std::map<std::string, std::string>;

FlowsAnswer flows_of(const Files& files, const Strings& patterns = {}) {
  const index::Scratch scratch;
  for (const auto& [path, text] : files) scratch.write("repo/" + path, text);
  index::IndexOptions options;
  options.root = scratch / "repo";
  options.file = scratch / "index.sqlite";
  const auto opened = index::refresh_and_open(options);
  return flows_answer(WikiGenerator(*opened.index, options.root), patterns);
}

Strings names_of(const FlowsAnswer& answer) {
  Strings names;
  for (const FlowClass& each : answer.classes) names.push_back(each.entry_points);
  return names;
}

Strings paths_of(const std::vector<Pick>& picks) {
  Strings paths;
  for (const Pick& pick : picks) paths.push_back(pick.path);
  return paths;
}

Files with(Files files, const Files& more) {
  for (const auto& [path, text] : more) files.insert_or_assign(path, text);
  return files;
}

// Three files that do something with the store, and the table that lists what they have.
const Files kStore{{"app/store.py", "def load(key):\n  return key\n"}};
Files three(const std::string& folder, const std::string& text) {
  Files files;
  for (const std::string name : {"a", "b", "c"}) files[folder + "/" + name + ".py"] = text;
  return files;
}
const std::string kRun = "from app.store import load\ndef run():\n  return load(1)\n";
const Files kTable{{"app/table.py",
                    "from app.jobs import a, b, c\n"
                    "JOBS = {'a': a.run, 'b': b.run, 'c': c.run}\n"}};

TEST(FlowClasses, AreFilesAlikeThatOneFileNamesAndHardlyAnyOther) {
  struct Case {
    const char* what;
    Files files;
    Strings classes;
  };
  const Files jobs = with(with(kStore, three("app/jobs", kRun)), kTable);
  const std::string user =
      "from app.jobs.a import run\nfrom app.jobs import b, c\n"
      "run(); b.run(); c.run()\n";
  const std::string base = "class Task:\n  def run(self): ...\n";
  const std::string leaf =
      "from app.base import Task\nfrom django.core.management.base import "
      "BaseCommand\nclass Command(BaseCommand): pass\n";
  const std::vector<Case> cases{
      {"a table of what they have", jobs, {"app/jobs/*.py"}},
      {"two files",
       with(jobs, {{"app/jobs/c.py", ""},
                   {"app/table.py",
                    "from app.jobs import a, "
                    "b\nJOBS = {'a': a.run, 'b': b.run}\n"}}),
       {}},
      {"named by many others: what serves them",
       with(jobs, {{"app/x.py", user}, {"app/y.py", user}}),
       {}},
      {"what knows nothing of the product",
       with(with(kStore, three("app/jobs", "def run():\n  return 1\n")), kTable),
       {}},
      {"errors that one file makes",
       with(with(kStore, three("app/jobs",
                               "from app.store import load\n"
                               "class run(Exception):\n  key = load(1)\n")),
            kTable),
       {}},
      {"a framework's commands, that nothing names",
       with(three("app/management/commands", leaf),
            {{"app/base.py", base}, {"app/management/commands/__init__.py", ""}}),
       {"app/management/commands/*.py"}},
      {"what a base type of the product calls, wherever it is made",
       with(three("app/checks",
                  "from app.check import Check\nclass Own(Check):\n  def run(self): pass\n"),
            {{"app/check.py",
              "class Check:\n  def run(self): raise NotImplementedError\n"
              "def all():\n  return [each().run() for each in Check.__subclasses__()]\n"}}),
       {"app/checks/*.py"}},
      {"what shares a base type's code and is never called through it",
       with({{"app/x/a.py", "from app.mixin import Log\nclass A(Log): pass\n"},
             {"app/y/b.py", "from app.mixin import Log\nclass B(Log): pass\n"},
             {"app/z/c.py", "from app.mixin import Log\nclass C(Log): pass\n"}},
            {{"app/mixin.py", "class Log:\n  def log(self, text): print(text)\n"}}),
       {}},
      {"what bears a decorator of the product",
       with(three("app/tasks", "from app.work import task\n@task\ndef go(): pass\n"),
            {{"app/work.py", "TASKS = []\ndef task(run):\n  TASKS.append(run)\n  return run\n"}}),
       {"app/tasks/*.py"}},
      {"functions of one name that somebody loads",
       with(three("app/addons", "from app.store import load\ndef setup(app): load(app)\n"), kStore),
       {"app/addons/*.py"}},
      {"tests",
       with(with(kStore, three("tests/jobs", kRun)),
            {{"tests/table.py",
              "from tests.jobs import a, b, c\nJOBS = {'a': a.run, 'b': b.run, 'c': c.run}\n"}}),
       {}},
  };
  for (const Case& each : cases)
    EXPECT_EQ(names_of(flows_of(each.files)), each.classes) << each.what;
}

TEST(FlowClasses, SayWhatWasLookedForInVain) {
  const FlowsAnswer answer = flows_of(kStore);
  EXPECT_THAT(answer.classes, IsEmpty());
  EXPECT_NE(answer.nothing_found, "");
}

TEST(FlowClasses, OfFoldersThatEachHaveAHubAreOne) {
  Files files = kStore;
  for (const std::string folder : {"user", "team", "site"}) {
    files = with(files, three("app/cli/" + folder, kRun));
    files["app/cli/" + folder + "/group.py"] =
        "from app.cli." + folder + " import a, b, c\nGROUP = [a.run, b.run, c.run]\n";
  }
  const FlowsAnswer answer = flows_of(files);
  EXPECT_THAT(names_of(answer), ElementsAre("app/cli/**/*.py"));
  EXPECT_EQ(answer.classes.at(0).roots.size(), 9U);
}

TEST(FlowClasses, HaveWhatLeadsToThem) {
  Files files{{"app/base.py", "ROUTES = []\ndef route(page):\n  ROUTES.append(page)\n"},
              {"app/router.py",
               "from app.kinds import View\ndef serve(view: View) -> View:\n"
               "  return view\n"},
              {"app/kinds.py", "class View:\n  def get(self): ...\n"},
              {"app/site.py", "ROUTES = ['app.user.urls', 'app.team.urls', 'app.shop.urls']\n"},
              {"app/other.py", "def other(): ...\n"}};
  for (const std::string name : {"user", "team", "shop"}) {
    files["app/" + name + "/views.py"] =
        "from app.kinds import View\nfrom app.base import route\n@route\nclass Page(View): pass\n";
    files["app/" + name + "/urls.py"] =
        "from app." + name + ".views import Page\nURLS = [('/', Page)]\n";
  }
  const FlowsAnswer answer = flows_of(files, Strings{"app/**/views.py"});
  // The rule sees what leads to them without an import, the strongest first.
  EXPECT_THAT(paths_of(answer.classes.at(0).files),
              ElementsAre("app/kinds.py", "app/router.py", "app/site.py"));
  EXPECT_THAT(paths_of(answer.classes.at(0).further),
              testing::UnorderedElementsAre("app/base.py", "app/shop/urls.py", "app/team/urls.py",
                                            "app/user/urls.py"));
  for (const Pick& pick : answer.classes.at(0).further) {
    EXPECT_THAT(pick.reasons, testing::Not(IsEmpty())) << pick.path;
  }
}

}  // namespace
}  // namespace kestrix
