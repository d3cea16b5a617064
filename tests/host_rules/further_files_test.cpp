// What the pages add to their rules' own files, over small repositories in several languages.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "kestrix/host/pages.h"
#include "kestrix/index/refresh/indexer.h"
#include "tests/index/scratch.h"

namespace kestrix {
namespace {

using Files = std::vector<std::pair<std::string, std::string>>;
using Strings = std::vector<std::string>;

struct Case {
  std::string name;
  PageAnswer (*answer)(const WikiGenerator&);
  Files files;
  Strings given;    // by the rule
  Strings further;  // in any order
};

std::vector<Case> cases() {
  return {
      {"SettingsByTheKeysThatCodeReads",
       configuration_answer,
       {{"lib/boot.py",
         "import os\nHOST = os.environ['SHOP_HOST']\nPORT = os.getenv('SHOP_PORT')\n"
         "KEY = os.getenv('SHOP_KEY')\n"},
        {"deploy/env.sample", "SHOP_HOST=localhost\nSHOP_PORT=80\nSHOP_KEY=\n"},
        {"deploy/other.ini", "[a]\ncolour=red\n"},
        {"lib/plain.py", "HOST = 'SHOP_HOST'\n"}},
       {},
       {"deploy/env.sample", "lib/boot.py"}},
      {"ContractsByWhoImplementsThem",
       extending_answer,
       {{"go.mod", "module shop\n\ngo 1.22\n"},
        {"pay/pay.go",
         "package pay\n\ntype Method interface {\n\tPay(sum int) error\n\tName() string\n}\n\n"
         "type Unused interface{ Never(a, b, c int) }\n"},
        {"card/card.go",
         "package card\n\ntype Card struct{}\n\nfunc (Card) Pay(sum int) error { return nil }\n"
         "func (Card) Name() string { return \"\" }\n"},
        {"cash/cash.go",
         "package cash\n\ntype Cash struct{}\n\nfunc (Cash) Pay(sum int) error { return nil }\n"
         "func (Cash) Name() string { return \"\" }\n"},
        {"gift/gift.go",
         "package gift\n\ntype Gift struct{}\n\nfunc (Gift) Pay(sum int) error { return nil }\n"
         "func (Gift) Name() string { return \"\" }\n"},
        {"shop/all.go",
         "package shop\n\nimport "
         "(\n\t\"shop/card\"\n\t\"shop/cash\"\n\t\"shop/gift\"\n\t\"shop/pay\"\n)\n\n"
         "var Methods = []pay.Method{card.Card{}, cash.Cash{}, gift.Gift{}}\n"},
        {"lone/lone.go", "package lone\n\ntype Lone interface{ Odd(a, b int) }\n"}},
       {"pay/pay.go"},
       {"shop/all.go"}},
      {"ErrorsByWhoTellsThemApart",
       errors_answer,
       {{"lib/faults.py", "class Missing(Exception): pass\nclass Taken(Exception): pass\n"},
        {"lib/a.py", "from lib.faults import Missing\ndef f(): raise Missing()\n"},
        {"lib/b.py", "from lib.faults import Taken\ndef g(): raise Taken()\n"},
        {"lib/edge.py",
         "from lib.faults import Missing, Taken\nfrom lib.a import f\ndef handle():\n  try:\n    "
         "f()\n"
         "  except Missing:\n    return 404\n  except Taken:\n    return 409\n"}},
       {"lib/faults.py"},
       {"lib/edge.py"}},
      {"ErrorsFromElsewhereWhereThereAreNoOthers",
       errors_answer,
       {{"shop/sum.py",
         "def sum(a):\n  if a == 1: raise ValueError()\n  if a == 2: raise ValueError()\n"
         "  if a == 3: raise TypeError()\n  if a == 4: raise KeyError()\n  raise KeyError()\n"},
        {"shop/once.py", "def once(): raise ValueError()\n"}},
       {},
       {"shop/sum.py"}},
      {"ErrorsByTheirNamesAndByWhatFrameworksCall",
       errors_answer,
       {{"shop/urls.py", "handler500 = 'shop.pages.broken'\n"},
        {"shop/pages.py", "def broken(request): return 500\n"},
        {"shop/layer.py",
         "class Layer:\n  def process_exception(self, request, fault): return None\n"},
        {"shop/answers.py",
         "def error_page(code): return code\ndef explain_error(code): return code\n"},
        {"shop/a.py", "from shop.answers import error_page\ndef a(): return error_page(1)\n"},
        {"shop/b.py", "from shop.answers import explain_error\ndef b(): return explain_error(1)\n"},
        {"shop/NoError.py", "class UserError(Missing): pass\nclass Missing(dict): pass\n"}},
       {},
       {"shop/pages.py", "shop/layer.py", "shop/answers.py"}},
      {"ErrorsByWhatFunctionsReturnEverywhere",
       errors_answer,
       {{"db/status.h",
         "class Status {\n public:\n  bool ok() const;\n  static Status NotFound();\n"
         "  static Status Broken();\n  enum Code { kOk };\n};\n"},
        {"db/cursor.h", "class Cursor {\n public:\n  bool ok() const;\n};\n"},
        {"db/a.cc", "#include \"db/status.h\"\nStatus a() { return Status(); }\n"},
        {"db/b.cc", "#include \"db/status.h\"\nStatus b() { return Status(); }\n"},
        {"db/c.cc", "#include \"db/status.h\"\nStatus c() { return Status(); }\n"},
        {"db/d.cc", "#include \"db/status.h\"\nStatus d() { return Status(); }\n"},
        {"db/e.cc",
         "#include \"db/cursor.h\"\n#include \"db/status.h\"\n"
         "Status e(Cursor& c) { return Status(); }\n"}},
       {"db/status.h"},
       {}},
      {"SettingsByTypesAndTables",
       configuration_answer,
       {{"go.mod", "module shop\n\ngo 1.22\n"},
        {"core/core.go",
         "package core\n\ntype UserConfig struct {\n\tHost string\n\tPort int\n\tKey string\n}\n"},
        {"core/view.go", "package core\n\ntype ConfigView struct {\n\tA, B, C, D int\n}\n"},
        {"a/a.go",
         "package a\n\nimport \"shop/core\"\n\nfunc A(c core.UserConfig, v core.ConfigView) {}\n"},
        {"b/b.go",
         "package b\n\nimport \"shop/core\"\n\nfunc B(c core.UserConfig, v core.ConfigView) {}\n"},
        {"c/c.go",
         "package c\n\nimport \"shop/core\"\n\nfunc C(c core.UserConfig, v core.ConfigView) {}\n"},
        {"d/table.go",
         "package d\n\ntype row struct{ name string }\n\nvar options = []row{{\"a\"}, {\"b\"}, "
         "{\"c\"}, {\"d\"}, {\"e\"}, {\"f\"}, {\"g\"}}\n"},
        {"e/e.go", "package e\n\nfunc RegisterOption(name string) {}\n"},
        {"f/f.go",
         "package f\n\nimport \"shop/e\"\n\nfunc F() {\n\te.RegisterOption(\"a\")\n"
         "\te.RegisterOption(\"b\")\n\te.RegisterOption(\"c\")\n\te.RegisterOption(\"d\")\n"
         "\te.RegisterOption(\"e\")\n\te.RegisterOption(\"f\")\n\te.RegisterOption(\"g\")\n"
         "\te.RegisterOption(\"h\")\n}\n"},
        {"config/theme/colours.css", "a { color: red }\n"},
        {"server.conf",
         "port 1\nbind a\nlog b\ndir c\nsave d\nuser e\npass f\nkeep g\nslow h\n"
         "fast i\n"}},
       {},
       {"core/core.go", "d/table.go", "f/f.go", "server.conf"}},
  };
}

class FurtherFiles : public testing::TestWithParam<Case> {};

TEST_P(FurtherFiles, AreThoseThatTheCodeShows) {
  const index::Scratch scratch;
  for (const auto& [path, text] : GetParam().files) scratch.write("repo/" + path, text);
  index::IndexOptions options;
  options.root = scratch / "repo";
  options.file = scratch / "index.sqlite";
  const auto opened = index::refresh_and_open(options);
  const WikiGenerator generator(*opened.index, options.root);
  const PageAnswer answer = GetParam().answer(generator);
  Strings given;
  for (const Pick& pick : answer.files) given.push_back(pick.path);
  Strings further;
  for (const Pick& pick : answer.further) {
    further.push_back(pick.path);
    EXPECT_FALSE(pick.reasons.empty()) << pick.path;
  }
  EXPECT_EQ(given, GetParam().given);
  EXPECT_THAT(further, testing::UnorderedElementsAreArray(GetParam().further));
}

INSTANTIATE_TEST_SUITE_P(Pages, FurtherFiles, testing::ValuesIn(cases()),
                         [](const auto& one) { return one.param.name; });

}  // namespace
}  // namespace kestrix
