#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/data_models/data_ranking.h"
#include "kestrix/host/data_models/data_signals.h"
#include "kestrix/host/data_models/file_origin.h"
#include "kestrix/roles/generated.h"
#include "kestrix/workers/wiki_cluster.h"

namespace kestrix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Source {
  std::string_view path;
  std::string_view text;
};

DataSignals signals_of(std::string_view path, std::string_view text) {
  return data_signals(path, Text(std::string(text)));
}

bool is_data(const Source& source) {
  return may_define_data(source.path) && defines_data(signals_of(source.path, source.text));
}

constexpr Source kData[] = {
    // DDL
    {"a.sql", "CREATE TABLE users (id int);"},
    {"a.sql", "create temp table if not exists \"s\".users\n(id int);"},
    {"a.sql", "CREATE TYPE mood AS ENUM ('a');"},
    {"a.sql", "ALTER TABLE users ADD COLUMN age int;"},
    {"a.py", "SQL = '''CREATE TABLE users (id int)'''"},
    {"a.py", "db.execute(\n    \"\"\"\n    CREATE TABLE users (id int)\"\"\")"},
    {"a.py", "sql_create = 'CREATE TABLE %(table)s (%(definition)s)'"},
    {"a.go", "const q = `CREATE TABLE users (\n id int)`"},
    {"a.go", "q := fmt.Sprintf(\"CREATE TABLE %s\", name)"},
    {"a.java", "String q = \"CREATE TABLE \" + name + \" (id int)\";"},
    {"a.js", "db.run(`create table if not exists ${prefix}users (id int)`)"},
    {"a.c", "exec(db, \"CREATE TABLE \\\"users\\\" (id)\");"},
    {"a.c", "\"CREATE TABLE users \"\n  \"(id int)\""},
    // data classes, in twos
    {"a.py", "@dataclass\nclass A:\n  x: int\n\n@dataclasses.dataclass(frozen=True)\nclass B:\n"},
    {"a.py", "@attr.s\nclass A: pass\n@define\nclass B: pass\n"},
    {"a.py", "class A(BaseModel):\n  x: int\nclass B(A, pydantic.BaseModel):\n  y: int\n"},
    {"a.py", "class A(TypedDict, total=False):\n  x: int\nclass B(NamedTuple):\n  y: int\n"},
    {"a.ts", "interface A { x: string }\nexport type B = {\n  y: (string | number)[] // (id)\n}\n"},
    {"a.ts", "const A = z.object({})\nexport const B = z.object({})\n"},
    {"A.java", "public record A(int x) {}\nrecord B<T>(T y) {}"},
    {"a.kt", "data class A(val x: Int)\ninternal data class B(val y: Int)"},
    {"a.cs", "public record A(int X);\npublic sealed record B { }"},
    {"a.cs", "record A<T>\n(\n    T X);\nrecord B : Base, IBase\n{\n"},
    {"a.go",
     "type A struct {\n\tX int `json:\"x\"`\n}\ntype B struct {\n\tY int `yaml:\"y\"`\n}\n"},
    {"a.rs", "#[derive(Debug, Serialize)]\nstruct A;\n#[derive(serde::Deserialize)]\nenum B {}"},
    // classes that are mapped to storage
    {"a.py", "class A(models.Model):\n    x = models.CharField()\n"},
    {"a.py", "class A(TimeStamped):\n    x = models.CharField()\n"},
    {"a.py", "class A(Base):\n    __tablename__ = 'a'\n    x: Mapped[int] = mapped_column()\n"},
    {"a.ts", "@Entity()\nexport class A {}\n"},
    {"a.ts", "import mongoose from 'mongoose'\nconst a = new Schema({})\n"},
    {"A.java", "@Entity\npublic class A {}"},
    {"a.cs", "class ShopContext : DbContext { }"},
    {"a.go", "type A struct {\n\tID int `gorm:\"primaryKey\"`\n}\n"},
    {"a.rs", "#[derive(Queryable)]\nstruct A;"},
    {"a.rb", "class A < ApplicationRecord\nend"},
    {"db/schema.rb", "# This file is auto-generated\n  create_table \"users\" do |t|\n"},
    {"A.php", "#[ORM\\Entity]\nclass A {}"},
    // schema languages
    {"a.cs", "public class Buyer : Entity, IAggregateRoot\n{"},
    {"A.php", "class A extends B {\n  return $this->hasMany(C::class);\n}"},
    {"a.py", "class Base(BaseModel):\n  pass\nclass A(Base):\n  x: int\n"},
    {"a.proto", "message A {\n}"},
    {"a.graphql", "type A {\n x: Int }"},
    {"a.prisma", "model A {\n}"},
    {"a.thrift", "struct A {\n}"},
    {"a.avsc", R"({"type": "record", "name": "A"})"},
    {"a.json", R"({"$schema": "http://json-schema.org/draft-07/schema#", "properties": {}})"},
    {"a.yaml", "openapi: 3.0.1\ncomponents:\n  schemas:\n    A:\n"},
};

constexpr Source kOther[] = {
    // prose about DDL
    {"a.py", "'''Emits a CREATE TABLE statement (see below).'''"},
    {"a.py", "def f():\n    \"\"\"Runs::\n\n        CREATE TABLE users (id int)\n    \"\"\""},
    {"a.py", "raise Error('could not create table %s' % name)"},
    {"a.go", "// CREATE TABLE users (id int)\n"},
    {"a.go", "return fmt.Errorf(\"create table %s: %w\", name, err)"},
    {"a.java", "/**\n * CREATE TABLE users (id int)\n */"},
    {"a.sql", "-- CREATE TABLE users (id int)\nSELECT 1;"},
    {"a.py", "print('CREATE TABLE')"},
    {"a.sql", "ALTER TABLE users DROP COLUMN age;"},
    // one data class, or none
    {"a.py", "@dataclass\nclass A:\n  x: int\n"},
    {"a.py", "class A(BaseModelFactory):\n  x = 1\nclass B(MyBaseModel2):\n  y = 1\n"},
    {"a.py", "'''\nclass A(BaseModel):\nclass B(BaseModel):\n'''\n"},
    {"a.py", "q.annotate(\n    output_field=models.CharField(),\n)\n"},
    {"a.ts", "interface A { run(): void }\ninterface B { on: () => void }\ninterface C {}\n"},
    {"a.tsx", "interface AProps { x: string }\ntype BProps = { y: string }\n"},
    {"a.ts", "import {Schema} from 'prosemirror'\nconst a = new Schema({})\n"},
    {"a.ts", " * @Entity()\n * class A {}\n"},
    {"a.cs", "record A() : Failure(\"no\");\nrecord B : IRequest;\nrecord C(int X);"},
    {"A.java", "@Entities\nclass A { Record record = record(1); }"},
    {"a.go", "type A struct {\n\tX int\n}\ntype B struct {\n\tY int\n}\n"},
    {"a.rs", "#[derive(Debug, Clone)]\nstruct A;\n#[derive(Parser)]\nstruct B;"},
    {"a.rb", "def create_table(name)\nend\ncreate_table_for(x)"},
    {"a.proto", "message GetARequest {\n}\nmessage GetAResponse {\n}"},
    {"a.ts", "const template = `\n@Entity()\nexport class A {}\n`\n"},
    {"a.py", "class Base(DeclarativeBase):\n    pass\n"},
    // documents that are no schema
    {"package.json", R"({"$schema": "http://json-schema.org/x", "properties": {}})"},
    {"a.json", R"({"$schema": "https://json.schemastore.org/a", "properties": {}})"},
    {"a.json", R"({"properties": {}, "definitions": {}})"},
    {"a.yaml", "info:\n  openapi: 3.0.1\nschemas:\n"},
    {"a.graphql", "query A {\n type { x }\n}"},
    {"a.md", "CREATE TABLE users (id int);"},
    {"a.py", ""},
};

TEST(DataModelFiles, RecognisesDefinitions) {
  for (const auto& source : kData) {
    EXPECT_TRUE(is_data(source)) << source.path << "\n" << source.text;
  }
}

TEST(DataModelFiles, PassesOverNearMisses) {
  for (const auto& source : kOther) {
    EXPECT_FALSE(is_data(source)) << source.path << "\n" << source.text;
  }
}

std::vector<std::string> ranked(const std::vector<Source>& sources) {
  PathTexts texts;
  for (const auto& source : sources) {
    texts.try_emplace(std::string(source.path), Text(std::string(source.text)));
  }
  return data_model_files(texts);
}

constexpr std::string_view kTable = "CREATE TABLE users (id int);\n";
constexpr std::string_view kRecords = "@dataclass\nclass A: pass\n@dataclass\nclass B: pass\n";

TEST(DataModelFiles, StrongestFirstThenByPath) {
  const std::string two = std::string(kTable) + std::string(kTable);
  EXPECT_THAT(ranked({{"z.sql", kTable}, {"m.py", kRecords}, {"b.sql", two}, {"a.sql", kTable}}),
              ElementsAre("b.sql", "a.sql", "z.sql", "m.py"));
}

TEST(DataOrigin, IsJudgedByFoldersNamesAndHeaders) {
  struct Case {
    std::string_view path;
    std::string_view text;
    DataOrigin origin;
  };
  const Case cases[] = {
      {"app/models.py", "", DataOrigin::kProduct},
      {"src/main/java/org/samples/shop/Owner.java", "", DataOrigin::kProduct},
      {"app/tools/models.py", "", DataOrigin::kProduct},
      {"store/migration/LATEST.sql", "", DataOrigin::kProduct},
      {"db/schema.rb", "# This file is auto-generated from the database", DataOrigin::kProduct},
      {"src/models.rs", "//! Nothing is generated by hand here.", DataOrigin::kProduct},
      {"examples/app/models.py", "", DataOrigin::kAside},
      {"scripts/report.py", "", DataOrigin::kAside},
      {".github/people.py", "", DataOrigin::kAside},
      {"lib/test-utils/models.py", "", DataOrigin::kAside},
      {"app/migrations/0001_initial.py", "", DataOrigin::kMigration},
      {"db/migrate/20240131120000_users.rb", "", DataOrigin::kMigration},
      {"db/old_migrations/add_users.rb", "", DataOrigin::kMigration},
      {"db/old-migrations/users.sql", "", DataOrigin::kMigration},
      {"db/post_migrate/users.rb", "", DataOrigin::kMigration},
      {"app/user_migration/users.rb", "", DataOrigin::kProduct},
      {"db/V1_2__users.sql", "", DataOrigin::kMigration},
      {"scripts/db_00016.sql", "", DataOrigin::kMigration},
      {"api/a.pb.go", "", DataOrigin::kGenerated},
      {"api/gen/openapi.yaml", "", DataOrigin::kGenerated},
      {"a.go", "// Code generated by tool. DO NOT EDIT.\n", DataOrigin::kGenerated},
      {"a.ts", "/* eslint-disable */\n// @generated\n", DataOrigin::kGenerated},
      {"a.yaml", "# Generated with protoc\n", DataOrigin::kGenerated},
      {"vendor/x/examples/a.go", "", DataOrigin::kVendored},
  };
  for (const auto& c : cases) {
    const bool made = has_generator_notice(c.text) || is_squeezed(c.text);
    EXPECT_EQ(origin_of(c.path, made), c.origin) << c.path;
  }
}

TEST(DataModelFiles, TheProductsOwnComeFirst) {
  EXPECT_THAT(ranked({{"vendor/x/a.sql", kTable},
                      {"app/migrations/0001.sql", kTable},
                      {"examples/a.sql", kTable},
                      {"z.py", kRecords}}),
              ElementsAre("z.py", "examples/a.sql", "app/migrations/0001.sql", "vendor/x/a.sql"));
}

TEST(DataModelFiles, ReadsNothingThatCannotBeAmongTheBest) {
  int reads = 0;
  PathTexts texts;
  for (int i = 0; i < 12; ++i)
    texts.try_emplace(std::to_string(i) + ".sql", Text(std::string(kTable)));
  texts.try_emplace("vendor/a.sql", Text([&reads] { return ++reads, std::string(kTable); }));
  EXPECT_EQ(data_model_files(texts).size(), 12U);
  EXPECT_EQ(reads, 0);
}

TEST(DataModelFiles, ReadsEachTextAtMostOnceAndOnlyWhereDataCanBe) {
  int reads = 0;
  PathTexts texts;
  for (const auto* path : {"a.sql", "style.css", "yarn.lock", "logo.svg"}) {
    texts.try_emplace(path, Text([&reads] { return ++reads, std::string(kTable); }));
  }
  EXPECT_THAT(data_model_files(texts), ElementsAre("a.sql"));
  EXPECT_EQ(reads, 1);
}

TEST(DataModelFiles, KeepsTheBestOfManyInAnyOrder) {
  std::vector<std::string> paths;
  PathTexts texts;
  for (int i = 99; i >= 10; --i) paths.push_back(std::to_string(i) + ".sql");
  for (const auto& path : paths) texts.try_emplace(path, Text(std::string(kTable)));
  const auto best = data_model_files(texts);
  ASSERT_EQ(best.size(), 12U);
  EXPECT_EQ(best.front(), "10.sql");
  EXPECT_EQ(best.back(), "21.sql");
}

TEST(DataModelFiles, NothingGivesNothing) { EXPECT_THAT(ranked({}), IsEmpty()); }

TEST(DataModelFiles, AsksTheIndexBeforeItReads) {
  PathTexts texts;
  const auto unread = [] { return ADD_FAILURE() << "read", std::string(); };
  texts.try_emplace("a.sql", Text(unread, DataSignals{.tables = 1}));
  texts.try_emplace("b.sql", Text(unread, DataSignals{.tables = 2}));
  texts.try_emplace("c.sql", Text(unread, DataSignals()));
  texts.try_emplace("d.sql", Text(unread, DataSignals{.tables = 9, .made_by_program = true}));
  EXPECT_THAT(data_model_files(texts), ElementsAre("b.sql", "a.sql", "d.sql"));
}

TEST(DataModelFiles, TakesTimeLinearInTheText) {
  const auto seconds = [](std::string_view path, std::string_view piece, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) text += piece;
    const auto begin = std::clock();
    signals_of(path, text);
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
  };
  const Source pieces[] = {
      {"a.sql", "create table a ("},
      {"a.sql", "CREATE TABLE "},
      {"a.sql", "alter table a add b "},
      {"a.ts", "new Schema("},
      {"a.ts", "interface A {"},
      {"a.ts", "interface A{a:b}"},
      {"a.ts", "`new Schema(` "},
      {"a.py", "\"\"\"a\"\"\""},
      {"a.py", "class A(B): "},
      {"a.py", "\"\"\" create table a ("},
      {"a.go", "type A struct {"},
      {"a.rs", "derive("},
      {"a.py", "\\\n'"},
      {"a.ts", "type A = {("},
      {"a.json", "\"$defs\": {"},
  };
  for (const auto& [path, piece] : pieces) {
    seconds(path, piece, 1000);  // compiles the patterns
    const double once = seconds(path, piece, 100'000);
    EXPECT_LT(seconds(path, piece, 400'000), 0.05 + 10 * once) << path << ": " << piece;
  }
}

TEST(DataModelFiles, EndsOnHostileText) {
  std::string deep = "type A struct {";
  for (int i = 0; i < 100000; ++i) deep += "{ \"\"\" ' type B struct {\n";
  for (const auto* path : {"a.go", "a.ts", "a.py", "a.rs", "a.sql", "a.json"}) {
    signals_of(path, deep);
    signals_of(path, "CREATE TABLE" + std::string(400000, ' '));
    signals_of(path, std::string(400000, '('));
  }
}

}  // namespace
}  // namespace kestrix
