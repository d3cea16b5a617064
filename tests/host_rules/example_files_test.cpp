// The examples page where no import tells what tests use.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/host_rules/answered_repository.h"

namespace kestrix {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using Files = AnsweredRepository::Files;

TEST(ExampleFiles, StartWithTheFixturesThatTestsTakeByName) {
  Files files{
      {"app/shop.py", "def sell(): pass\n\n\ndef buy(): pass\n"},
      {"tests/conftest.py", "import pytest\n\n\n@pytest.fixture\ndef shop():\n    return 1\n"}};
  for (const std::string name : {"a", "b", "c"}) {
    files.emplace_back("tests/test_" + name + ".py",
                       "from app.shop import buy, sell\n\n\ndef test_sale(shop):\n    sell()\n" +
                           std::string(name == "b" ? "    buy()\n" : ""));
  }
  const AnsweredRepository repository(files);
  const PageAnswer answer = examples_answer(repository.generator());
  EXPECT_THAT(paths_of(answer.files), ElementsAre("tests/conftest.py", "tests/test_b.py",
                                                  "tests/test_a.py", "tests/test_c.py"));
  EXPECT_EQ(reason_of(answer.files, "tests/conftest.py", "used_by_tests"), "used by 3 tests");
  EXPECT_EQ(reason_of(answer.files, "tests/test_b.py", "reaches_production"),
            "reaches 1 production file, 2 times");
}

// A driver beside the tests, what names a framework of tests, what nothing but tests uses; but not
// what the product's folders use, too.
TEST(ExampleFiles, AddWhatServesTestsWhereverItLies) {
  Files files{{"go.mod", "module shop\n\ngo 1.22\n"},
              {"check/driver/driver.go", "package driver\n\ntype Driver struct{}\n"},
              {"stub/stub.go", "package stub\n\ntype Stub struct{}\n"},
              {"config/config.go", "package config\n\ntype Config struct{}\n"},
              {"fake/clock.go",
               "package fake\n\nimport \"x.org/testify/assert\"\n\ntype Clock struct{}\n\n"
               "func (c Clock) Check() { assert.Equal(1, 2) }\n"}};
  for (const std::string name : {"a", "b", "c", "d"}) {
    files.emplace_back(
        "check/tests/" + name + "/" + name + ".go",
        "package " + name +
            "\n\nimport "
            "(\n\t\"shop/check/driver\"\n\t\"shop/stub\"\n\t\"shop/config\"\n\t\"shop/fake\"\n)\n\n"
            "func Run(d driver.Driver, s stub.Stub, c config.Config, f fake.Clock) {}\n");
    files.emplace_back(
        name + "/" + name + ".go",
        "package " + name + "\n\nimport \"shop/config\"\n\nfunc Use(c config.Config) {}\n");
  }
  const AnsweredRepository repository(files);
  const auto further = paths_of(examples_answer(repository.generator()).further);
  EXPECT_THAT(further, Contains("check/driver/driver.go"));
  EXPECT_THAT(further, Contains("fake/clock.go"));
  EXPECT_THAT(further, Contains("stub/stub.go"));
  EXPECT_THAT(further, Not(Contains("config/config.go")));
}

// The product knows the streams, but only tests know how to make them up; a library's tests name
// what it is there for, and that is no support.
TEST(ExampleFiles, AddWhatAProgramDeclaresForItsTestsAlone) {
  for (const bool program : {true, false}) {
    Files files{
        {"go.mod", "module shop\n\ngo 1.22\n"},
        {"streams/streams.go",
         "package streams\n\ntype Streams struct{}\n\nfunc Test() Streams { return Streams{} }\n"},
        {"main.go", std::string("package main\n\nimport \"shop/a\"\n\nfunc ") +
                        (program ? "main" : "other") + "() { a.Run() }\n"}};
    for (const std::string name : {"a", "b", "c", "d", "e", "f"}) {
      const std::string head = "package " + name + "\n\nimport \"shop/streams\"\n\n";
      const std::string next(1, static_cast<char>(name.front() + 1));
      files.emplace_back(
          name + "/" + name + ".go",
          name == "f" ? head + "func Run(s streams.Streams) {}\n"
                      : "package " + name + "\n\nimport (\n\t\"shop/streams\"\n\t\"shop/" + next +
                            "\"\n)\n\nfunc Run(s streams.Streams) { " + next + ".Run(s) }\n");
      files.emplace_back(name + "/" + name + "_test.go",
                         head + "func TestRun() { Run(streams.Test()) }\n");
    }
    const AnsweredRepository repository(files);
    const auto further = paths_of(examples_answer(repository.generator()).further);
    EXPECT_EQ(std::ranges::count(further, "streams/streams.go"), program ? 1 : 0);
  }
}

// In all of the repository's tests, or in all of one engine's among several.
TEST(ExampleFiles, KnowFactoriesByTheirFilesAndWhatIsMixedIntoAllTests) {
  for (const std::string engine : {"", "desk/"}) {
    Files files{{"app/models/user.rb", "class User < ApplicationRecord\nend\n"},
                {"spec/factories/users.rb",
                 "FactoryBot.define do\n  factory(:user) { name { 'A' } }\nend\n"},
                {"spec/support/sign_in.rb", "module SignIn\n  def sign_in(user) = nil\nend\n"},
                {"spec/rails_helper.rb",
                 "RSpec.configure do |config|\n  config.include SignIn, type: :request\nend\n"}};
    for (const std::string name : {"a", "b", "c", "d", "e"}) {
      files.emplace_back("spec/requests/" + name + "_spec.rb",
                         "require 'rails_helper'\n\nRSpec.describe 'it' do\n"
                         "  it('works') { create(:user) }\nend\n");
    }
    for (auto& [path, text] : files) path.insert(0, engine);
    for (int i = 0; i < (engine.empty() ? 0 : 9); ++i) {
      files.emplace_back("till/spec/t" + std::to_string(i) + "_spec.rb",
                         "RSpec.describe('it') { it('works') { } }\n");
    }
    const AnsweredRepository repository(files);
    const auto answer = examples_answer(repository.generator()).files;
    EXPECT_EQ(reason_of(answer, engine + "spec/factories/users.rb", "used_by_tests"),
              "used by 5 tests");
    EXPECT_EQ(reason_of(answer, engine + "spec/support/sign_in.rb", "used_by_tests"),
              "used by 6 tests");
  }
}

// A file beside the product's own is support where its name and its users say so and the product
// doesn't know it; what the product names, too, is its own, however it is called.
TEST(ExampleFiles, AddWhatIsNamedForTestsUnlessTheProductUsesIt) {
  for (const bool used : {false, true}) {
    Files files{{"shop/__init__.py", ""},
                {"shop/tools/__init__.py", ""},
                {"shop/tools/test.py", "def get_shop(): pass\n"},
                {"shop/tools/text.py", "def words(): pass\n"},
                {"shop/desk.py", used ? "from shop.tools.test import get_shop\n\n\n"
                                        "def open():\n    get_shop()\n"
                                      : "def open(): pass\n"}};
    for (const std::string name : {"a", "b", "c", "d"}) {
      files.emplace_back("tests/test_" + name + ".py",
                         "from shop.tools.test import get_shop\nfrom shop.tools.text import words\n"
                         "\n\ndef test_it():\n    get_shop()\n    words()\n");
    }
    const AnsweredRepository repository(files);
    const auto further = paths_of(examples_answer(repository.generator()).further);
    EXPECT_EQ(std::ranges::count(further, "shop/tools/test.py"), used ? 0 : 1);
    EXPECT_THAT(further, Not(Contains("shop/tools/text.py")));
  }
}

// Where so much is shared outside of the tests that it does not fit behind a full page, the page
// has fewer tests: those that show the most.
TEST(ExampleFiles, MakeRoomForWhatIsSharedOutsideOfTheTests) {
  Files files{
      {"go.mod", "module shop\n\ngo 1.22\n"},
      {"main.go",
       "package main\n\nimport \"shop/shop\"\n\nfunc main() {\n\tshop.Sell()\n\tshop.Buy()\n}\n"},
      {"shop/shop.go", "package shop\n\nfunc Sell() {}\n\nfunc Buy() {}\n"}};
  std::string imports;
  std::string calls;
  for (const std::string name : {"a", "b", "c", "d", "e", "f"}) {
    files.emplace_back("testutil/" + name + "/" + name + ".go",
                       "package " + name + "\n\nfunc Help() {}\n");
    imports += "\t\"shop/testutil/" + name + "\"\n";
    calls += "\t" + name + ".Help()\n";
  }
  for (int i = 10; i < 28; ++i) {
    const std::string number = std::to_string(i);
    const bool shows_more = i % 4 == 0;
    files.emplace_back("checks/t" + number + "/all_test.go",
                       "package t" + number + "\n\nimport (\n\t\"shop/shop\"\n" + imports +
                           ")\n\nfunc TestIt() {\n" + calls + "\tshop.Sell()\n" +
                           (shows_more ? "\tshop.Buy()\n" : "") + "}\n");
  }
  const AnsweredRepository repository(files);
  const PageAnswer answer = examples_answer(repository.generator());
  EXPECT_THAT(
      paths_of(answer.files),
      ElementsAre("checks/t12/all_test.go", "checks/t16/all_test.go", "checks/t20/all_test.go",
                  "checks/t24/all_test.go", "checks/t10/all_test.go", "checks/t11/all_test.go"));
  EXPECT_EQ(answer.further.size(), 6U);
  EXPECT_EQ(reason_of(answer.further, "testutil/a/a.go", "used_by_tests"), "used by 18 tests");
  EXPECT_EQ(reason_of(answer.files, "checks/t12/all_test.go", "uses_helpers"),
            "names what tests share 6 times");
}

// Scripts are tests where most tests are such: they share what they take in, by whatever way they
// write it, and of the others the longest shows most. Functions of a test are its own.
TEST(ExampleFiles, KnowScriptsThatTestAProgram) {
  Files files{
      {"main.c", "int main(void) { return 0; }\n"},
      {"tests/lib.tcl", "proc start_it {code} {\n  uplevel 1 $code\n}\n"},
      {"tests/lib.sh", "finish() {\n  exit 0\n}\n"},
      {"tests/run.tcl", "source tests/lib.tcl\nsource tests/more.tcl\nproc run_all {} {}\n"},
      {"tests/more.tcl", "# nothing\n"}};
  for (const std::string name : {"a", "b", "c", "d"}) {
    std::string steps;
    for (int i = 0; i < (name == "c" ? 9 : 3); ++i) steps += "step " + name + "\n";
    files.emplace_back("tests/" + name + ".tcl", "start_it {\n" + steps + "}\n");
    files.emplace_back("tests/" + name + ".sh", ". \"${0%/*}/lib.sh\"\ncheck_" + name +
                                                    "() {\n  true\n}\ncheck_a\nfinish\n");
  }
  const AnsweredRepository repository(files);
  const auto answer = examples_answer(repository.generator()).files;
  const auto paths = paths_of(answer);
  EXPECT_THAT(std::vector(paths.begin(), paths.begin() + 4),
              ElementsAre("tests/lib.tcl", "tests/lib.sh", "tests/more.tcl", "tests/c.tcl"));
  EXPECT_EQ(reason_of(answer, "tests/lib.sh", "used_by_tests"), "used by 4 tests");
  EXPECT_EQ(reason_of(answer, "tests/lib.tcl", "used_by_tests"), "used by 5 tests");
  EXPECT_EQ(reason_of(answer, "tests/a.sh", "used_by_tests"), "");
  EXPECT_EQ(reason_of(answer, "tests/c.tcl", "test_size"), "11 lines");
}

// What a library shows of itself: whole programs, the shorter the better; neither parts of them nor
// measurements, and nothing of a program, which shows no use of itself.
TEST(ExampleFiles, AddTheSamplesOfALibrary) {
  for (const bool application : {false, true}) {
    Files files{{"composer.json", R"({"autoload": {"psr-4": {"Shop\\": "src/"}}})"},
                {"src/Desk.php", "<?php\nnamespace Shop;\nclass Desk {}\n"},
                {"src/Till.php", "<?php\nnamespace Shop;\nclass Till {}\n"}};
    const std::string body = "<?php\nuse Shop\\Desk;\nuse Shop\\Till;\n";
    const std::string uses = "new Desk();\nnew Till();\n";
    files.emplace_back("samples/short/run.php", body + uses);
    files.emplace_back("samples/long/run.php",
                       body + "use Samples\\Part;\nfunction a() {}\nfunction b() {}\n" + uses);
    files.emplace_back("samples/one/run.php", "<?php\nuse Shop\\Desk;\nnew Desk();\n");
    files.emplace_back("benchmarks/run.php", body + uses);
    files.emplace_back("tests/DeskTest.php",
                       "<?php\nuse Shop\\Desk;\nclass DeskTest { function t() { new Desk(); } }\n");
    if (application) files.emplace_back("public/index.php", body + uses);
    const AnsweredRepository repository(files);
    const PageAnswer answer = examples_answer(repository.generator());
    if (application) {
      EXPECT_THAT(paths_of(answer.further), testing::IsEmpty());
    } else {
      EXPECT_THAT(paths_of(answer.further),
                  ElementsAre("samples/short/run.php", "samples/long/run.php"));
      EXPECT_EQ(reason_of(answer.further, "samples/short/run.php", "sample"),
                "a sample that reaches 2 production files");
    }
  }
}

TEST(ExampleFiles, LeaveOutOthersTestsAndWhatOnlyHandsOn) {
  Files files{{"app/shop.py", "def sell(): pass\n"},
              {"tests/help/__init__.py", "from tests.help.desk import desk\n"},
              {"tests/help/desk.py", "def desk(): pass\n"}};
  for (const std::string folder : {"tests/", "third_party/tests/"}) {
    for (const std::string name : {"a", "b", "c"}) {
      files.emplace_back(folder + "test_" + name + ".py",
                         "from app.shop import sell\nfrom tests.help import desk\n\n\n"
                         "def test_sale():\n    desk()\n    sell()\n");
    }
  }
  const AnsweredRepository repository(files);
  EXPECT_THAT(paths_of(examples_answer(repository.generator()).files),
              ElementsAre("tests/help/desk.py", "tests/test_a.py", "tests/test_b.py",
                          "tests/test_c.py", "tests/help/__init__.py"));
}

}  // namespace
}  // namespace kestrix
