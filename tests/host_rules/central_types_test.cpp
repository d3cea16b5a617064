// The data models page where the code that names the types decides.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kestrix/host/data_models/data_evidence.h"
#include "kestrix/host/data_models/data_types.h"
#include "tests/host_rules/answered_repository.h"

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;
using Files = AnsweredRepository::Files;

constexpr std::string_view kModule = "module shop\n\ngo 1.22\n";

Files go(Files files) {
  files.emplace_back("go.mod", std::string(kModule));
  return files;
}

std::string user(const std::string& package, const std::string& body) {
  return "package " + package + "\n\nimport \"shop/types\"\n\n" + body;
}

// Orders are handed around; options are made by those who hand them over; the engine works; the
// kit serves every folder.
Files go_shop() {
  Files files{
      {"go.mod", std::string(kModule)},
      {"types/order.go",
       "package types\n\ntype Order struct {\n\tID string\n\tLines []Line\n}\n\n"
       "type Line struct {\n\tSKU string\n\tCount int\n}\n"},
      {"types/options.go", "package types\n\ntype Options struct {\n\tWide bool\n\tDeep bool\n}\n"},
      {"types/engine.go",
       "package types\n\ntype Engine struct {\n\tspeed int\n}\n\nfunc (e *Engine) Run() {\n" +
           std::string(9, '\n') + "}\n\nfunc (e *Engine) Stop() {\n" + std::string(9, '\n') +
           "}\n"},
  };
  for (const std::string name : {"cart", "mail", "stock", "web"}) {
    files.emplace_back(name + "/" + name + ".go",
                       user(name,
                            "func Take(order types.Order, engine *types.Engine) {\n"
                            "\tshow(types.Options{Wide: true})\n}\n"));
  }
  return files;
}

TEST(CentralTypes, AreThoseThatOthersTakeAndThatHoldRatherThanDo) {
  const AnsweredRepository repository(go_shop());
  const PageAnswer answer = data_models_answer(repository.generator());
  ASSERT_THAT(answer.files, Not(IsEmpty()));
  EXPECT_EQ(answer.files.front().path, "types/order.go");
  EXPECT_EQ(reason_of(answer.files, "types/order.go", "named_in_folders"),
            "named in 4 other folders: Order:3");
  const auto types = data_types(repository.generator().code_evidence());
  for (const DataType& type : types) {
    const std::string_view name = repository.generator().code_evidence()[type.at].name;
    const bool data = name == "Order" || name == "Line";
    EXPECT_EQ(type.likeness >= kDataLikeness, data) << name;
  }
}

TEST(CentralTypes, AreStoredThroughAnyNumberOfBasesAndBringTheirBaseAlong) {
  const AnsweredRepository repository(
      {{"base/models.py",
        "from django.db import models\n\n\nclass Base(models.Model):\n    made = 1\n"},
       {"shop/models.py",
        "from base.models import Base\n\n\nclass Item(Base):\n    name = 1\n\n\nclass Sale(Base):\n"
        "    item = 1\n"},
       {"shop/forms.py", "class ItemForm:\n    name = 1\n    wide = 2\n"},
       {"shop/views.py",
        "from shop.forms import ItemForm\nfrom shop.models import Item\n\n\ndef show(item: Item):\n"
        "    return ItemForm(item)\n"}});
  const PageAnswer answer = data_models_answer(repository.generator());
  EXPECT_THAT(paths_of(answer.files), UnorderedElementsAre("base/models.py", "shop/models.py"));
  EXPECT_EQ(reason_of(answer.files, "shop/models.py", "stored_types"),
            "declares 2 types that are stored: Item:4, Sale:8");
  EXPECT_EQ(reason_of(answer.files, "base/models.py", "data_base"),
            "2 data types extend it: Base:4");
}

// What shows that a file's types are the data, each beside what only looks like it.
struct Case {
  std::string name;
  Files files;
  std::string path;
  std::string kind;  // of the reason
  bool shown;
};

Files models(std::size_t count, Files more) {
  more.emplace_back("shop/models/base.py", "from django.db import models\n");
  return repeated(count, "shop/models/{0}.py",
                  "from django.db import models\n\n\nclass Item{0}(models.Model):\n    name = 1\n",
                  std::move(more));
}

std::string imports(std::size_t count, std::string_view from) {
  std::string text;
  for (std::size_t at = 0; at < count; ++at)
    text += fmt::format("from {0}{1} import Item{1}\n", from, static_cast<char>('a' + at));
  return text;
}

// Entities, and a list of as many as are given.
Files room(std::size_t count, std::size_t listed) {
  std::string names, imported;
  for (std::size_t at = 0; at < listed; ++at) {
    const char letter = static_cast<char>('a' + at);
    names += fmt::format("Item{}::class, ", letter);
    imported += fmt::format("import shop.model.Item{}\n", letter);
  }
  return repeated(count, "src/main/kotlin/shop/model/Item{0}.kt",
                  "package shop.model\n\nimport androidx.room.Entity\n\n"
                  "@Entity\ndata class Item{0}(val id: String)\n",
                  {{"src/main/kotlin/shop/Store.kt",
                    "package shop\n\nimport androidx.room.Database\n"
                    "import androidx.room.RoomDatabase\n" +
                        imported + "\n@Database(entities = [" + names +
                        "], version = 1)\nabstract class Store : RoomDatabase()\n"}});
}

// A struct that many name, and functions called after it in one file of their own or in its own.
Files pane(std::string_view path, std::string_view prefix) {
  std::string functions, announced;
  for (const std::string_view verb : {"create", "find", "free"}) {
    const std::string head = fmt::format("struct pane *{}_{}(void)", prefix, verb);
    functions += head + " { return 0; }\n";
    announced += head + ";\n";
  }
  const bool own = path == "shop.h";
  const std::string header =
      "struct pane {\n  int x;\n  int y;\n  int wide;\n};\n" + (own ? functions : announced);
  Files files{{"shop.h", header}};
  if (!own) files.emplace_back(std::string(path), "#include \"shop.h\"\n" + functions);
  return repeated(4, "part_{0}.c",
                  fmt::format("#include \"shop.h\"\nint part_{{0}}(struct pane *p) {{{{\n"
                              "  return p == {0}_create() || p == {0}_find() || p == {0}_free();\n"
                              "}}}}\n",
                              prefix),
                  std::move(files));
}

Files carts(std::string_view body, std::string_view test) {
  return go(
      {{"shop/shop.go",
        "package shop\n\ntype Line struct {\n\tSKU string\n\tCount int\n}\n\n" + std::string(body)},
       {"shop/shop_test.go", "package shop\n\n" + std::string(test)},
       {"web/web.go", "package web\n\nimport \"shop/shop\"\n\nfunc Go(line shop.Line) {}\n"}});
}

std::vector<Case> cases() {
  const std::string cart = "type Cart struct {\n\tLines []Line\n\tOwner string\n}\n";
  return {
      {"IndexesOfWhatIsStored", models(6, {{"shop/models/__init__.py", imports(6, ".")}}),
       "shop/models/__init__.py", "gathers_types", true},
      {"IndexesOfSomeOfIt", models(6, {{"shop/models/__init__.py", imports(2, ".")}}),
       "shop/models/__init__.py", "gathers_types", false},
      {"CodeThatUsesWhatIsStored",
       models(6, {{"shop/views.py",
                   imports(6, "shop.models.") + "\n\ndef show():\n    return Itema()\n"}}),
       "shop/views.py", "gathers_types", false},
      {"ListsOfEntities", room(5, 5), "src/main/kotlin/shop/Store.kt", "gathers_types", true},
      {"ListsOfFewEntities", room(5, 2), "src/main/kotlin/shop/Store.kt", "gathers_types", false},
      {"FunctionsAfterAStruct", pane("pane.c", "pane"), "pane.c", "works_on_type", true},
      {"FunctionsAfterAnotherWord", pane("pane.c", "panel"), "pane.c", "works_on_type", false},
      {"FunctionsBesideTheirStruct", pane("shop.h", "pane"), "shop.h", "works_on_type", false},
      {"FieldsOfData", carts(cart, ""), "shop/shop.go", "type_held", true},
      {"FieldsOfWhatWorks",
       carts("type Desk struct {\n\tline Line\n}\n\nfunc (d *Desk) A() {\n" + std::string(9, '\n') +
                 "}\n\nfunc (d *Desk) B() {\n" + std::string(9, '\n') + "}\n",
             ""),
       "shop/shop.go", "type_held", false},
      {"MadeByTests", carts("", "func TestLine() {\n\tshow(Line{SKU: \"a\"})\n}\n"), "shop/shop.go",
       "made_by_tests", true},
      {"NamedByTests", carts("", "func TestLine(line Line) {}\n"), "shop/shop.go", "made_by_tests",
       false},
  };
}

class DataSignalsOf : public testing::TestWithParam<Case> {};

TEST_P(DataSignalsOf, TellTheDataFromItsLikes) {
  const AnsweredRepository repository(GetParam().files);
  const auto file = repository.generator().indexed().find(GetParam().path);
  ASSERT_TRUE(file);
  const DataEvidence evidence(repository.generator().code_evidence());
  std::vector<std::string> kinds;
  for (const Reason& reason : evidence.sheet().reasons(*file)) kinds.push_back(reason.kind);
  if (GetParam().shown) {
    EXPECT_THAT(kinds, testing::Contains(GetParam().kind));
  } else {
    EXPECT_THAT(kinds, Not(testing::Contains(GetParam().kind)));
  }
}

INSTANTIATE_TEST_SUITE_P(Pages, DataSignalsOf, testing::ValuesIn(cases()),
                         [](const auto& one) { return one.param.name; });

// What a type asks others for is no data that it holds.
TEST(CentralTypes, HoldNoDataInServices) {
  const std::string head = "package shop;\npublic ";
  const AnsweredRepository repository(
      {{"src/main/java/shop/Mail.java", head + "interface Mail { void send(String text); }\n"},
       {"src/main/java/shop/Stock.java", head + "interface Stock { int take(String sku); }\n"},
       {"src/main/java/shop/Desk.java",
        head +
            "class Desk {\n  private final Mail mail;\n  private final Stock stock;\n"
            "  void go() {\n" +
            std::string(9, '\n') + "    mail.send(null);\n  }\n}\n"},
       {"src/main/java/shop/Order.java",
        head +
            "class Order {\n  private final String sku;\n  private final int count;\n"
            "  void go() {\n" +
            std::string(9, '\n') + "    show(sku);\n  }\n}\n"}});
  const CodeEvidence& code = repository.generator().code_evidence();
  std::vector<std::string> data;
  for (const DataType& type : data_types(code)) {
    if (type.likeness >= kDataLikeness) data.emplace_back(code[type.at].name);
  }
  EXPECT_THAT(data, ElementsAre("Order"));
}

TEST(CentralTypes, LeaveMigrationsToProductsThatStoreNothingElse) {
  const Files migrations{
      {"migrations/001.sql", "CREATE TABLE users (id int);\n"},
      {"migrations/002.sql", "CREATE TABLE orders (id int);\n"},
      {"app/store.py", "class Row:\n    id = 1\n\n\nclass Key:\n    id = 1\n"},
      {"app/main.py", "from app.store import Key, Row\n\n\ndef a(row: Row, key: Key):\n    pass\n"},
      {"lib/main.py",
       "from app.store import Key, Row\n\n\ndef a(row: Row, key: Key):\n    pass\n"}};
  const AnsweredRepository bare(migrations);
  EXPECT_THAT(paths_of(data_models_answer(bare.generator()).files),
              ElementsAre("app/store.py", "migrations/001.sql", "migrations/002.sql"));
  Files with_schema = migrations;
  with_schema.emplace_back("app/schema.sql", "CREATE TABLE shelves (id int);\n");
  const AnsweredRepository stored(with_schema);
  EXPECT_THAT(paths_of(data_models_answer(stored.generator()).files),
              UnorderedElementsAre("app/store.py", "app/schema.sql"));
}

}  // namespace
}  // namespace kestrix
