// The data models page where the code that names the types decides.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

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
