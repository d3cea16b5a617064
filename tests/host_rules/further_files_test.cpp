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
       {},
       {"lib/edge.py", "lib/faults.py"}},
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
