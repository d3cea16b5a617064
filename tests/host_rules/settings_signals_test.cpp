// What shows that a product is configured in a file, each beside what only looks like it.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/host_rules/answered_repository.h"
#include "tests/host_rules/signal_case.h"

namespace kestrix {
namespace {

using Files = AnsweredRepository::Files;

using Case = SignalCase;

// `count` times a pattern in which {0} is a letter.
std::string each_letter(std::size_t count, std::string_view pattern) {
  std::string text;
  for (std::size_t at = 0; at < count; ++at) {
    text += fmt::format(fmt::runtime(pattern), static_cast<char>('a' + at));
  }
  return text;
}

// Parts that read the environment, and a file that puts them together.
Files parts(std::string_view reading, std::size_t users, Files more) {
  const std::string text = fmt::format(
      "export const {{0}} = () => [{0}.{{0}}_HOST, {0}.{{0}}_PORT, {0}.{{0}}_KEY];\n", reading);
  more.emplace_back("src/all.ts", each_letter(6, "import {{ {0} }} from './parts/{0}';\n") +
                                      "export const all = [" + each_letter(6, "{0}, ") + "];\n");
  for (std::size_t at = 0; at < users; ++at) {
    more.emplace_back(fmt::format("src/user{}.ts", at),
                      each_letter(6, "import {{ {0} }} from './parts/{0}';\n") +
                          "import { shared } from './shared';\n" + "export const user = [" +
                          each_letter(6, "{0}(), ") + "shared];\n");
  }
  more.emplace_back("src/shared.ts", "export const shared = 1;\n");
  return repeated(6, "src/parts/{0}.ts", text, std::move(more));
}

// Files of one folder, two of which read settings, and one that goes with them or not.
Files folder(std::size_t others, std::string_view use) {
  return repeated(
      others, "shop/kept/x{0}.py", "def {0}(): return 1\n",
      {{"shop/kept/a.py", "import os\n" + each_letter(5, "{0} = os.environ['SHOP_{0}']\n")},
       {"shop/kept/b.py", "import os\n" + each_letter(3, "{0} = os.environ['SHOP_B{0}']\n")},
       {"shop/kept/rest.py", std::string(use) + "def rest(): return 1\n"}});
}

// Code that reads settings by their keys, and a text.
Files described(std::string_view path, std::string_view text) {
  return {{"shop/app.py", "import os\n" + each_letter(10, "{0} = os.environ['SHOP_{0}_SIZE']\n")},
          {std::string(path), std::string(text)}};
}

// Files that answer to the first parts of keys, and who reads these.
Files keyed(std::string_view read) {
  return repeated(
      3, "config/{0}.php", "<?php\nreturn ['name' => env('SHOP_{0}')];\n",
      {{"app/Boot.php",
        "<?php\nclass Boot {\n  function go() {\n    return [config('a.name'), "
        "config('b.name'), config('c.name')];\n  }\n}\n"},
       {"app/Reader.php",
        fmt::format("<?php\nclass Reader {{\n  function go() {{\n    return {};\n  }}\n}}\n",
                    read)}});
}

std::vector<Case> company() {
  return {
      {"WhatPutsSettingsTogether", parts("process.env", 1, {}), "src/all.ts", "gathers_settings",
       true},
      {"WhatPutsOtherPartsTogether", parts("table", 1, {}), "src/all.ts", "gathers_settings",
       false},
      {"WhatUsesPartsThatAllUse", parts("process.env", 5, {}), "src/all.ts", "gathers_settings",
       false},
      {"WhatGoesWithTheSettingsInTheirFolder", folder(1, "from shop.kept.a import a\n"),
       "shop/kept/rest.py", "beside_settings", true},
      {"WhatHasNothingToDoWithThem", folder(1, ""), "shop/kept/rest.py", "beside_settings", false},
      {"FoldersOfOtherThings", folder(6, "from shop.kept.a import a\n"), "shop/kept/rest.py",
       "beside_settings", false},
      {"TextsThatExplainSettings",
       described("docs/setup.md",
                 each_letter(10, "## `SHOP_{0}_SIZE`\n\nHow much of {0} there is.\n")),
       "docs/setup.md", "explains_settings", true},
      {"SettingsThatAreWrittenInAnotherWay",
       described("docs/setup.rst",
                 each_letter(10, "* ``shop_{0}_size``: how much of it there is\n")),
       "docs/setup.rst", "explains_settings", true},
      {"HistoriesThatNameSettings",
       described("CHANGES.md",
                 each_letter(10, "- Add `SHOP_{0}_SIZE`, " +
                                     each_letter(26, "and tell why it is so and how ") +
                                     "not otherwise, as was said before.\n")),
       "CHANGES.md", "explains_settings", false},
      {"TextsThatNameOtherThings",
       described("docs/api.md", each_letter(10,
                                            "`SHOP_{0}_SIZE` goes with `{0}_one`, `{0}_two`, "
                                            "`{0}_three` and `{0}_four`.\n")),
       "docs/api.md", "explains_settings", false},
  };
}

// A builder whose fields start with values or not, and what makes one of these.
Files builder(std::string_view name, std::string_view first) {
  return {{"src/main/java/shop/Limits.java",
           "package shop;\npublic class Limits {\n  static Limits of() { return null; }\n}\n"},
          {"src/main/java/shop/Client.java",
           fmt::format("package shop;\npublic class Client {{\n  public static class {} {{\n"
                       "    private Limits limits{};\n",
                       name, first.empty() ? "" : " = new Limits()") +
               each_letter(8, fmt::format("    private int {{0}}{};\n", first)) + "  }\n}\n"}};
}

// A module of an Android build.
Files android(std::string_view resources) {
  return {{"app/build.gradle.kts", "plugins {\n    id(\"shop.app\")\n}\n"},
          {"gradle.properties", "org.gradle.caching=true\n"},
          {"app/src/main/kotlin/App.kt", "class App\n"},
          {fmt::format("app/src/main/res/{}", resources), "<adaptive-icon/>\n"}};
}

// A table of values.
Files table(std::string_view name) {
  return {{"src/table.c", fmt::format("static const char *{}[] = {{\"a\", \"b\", \"c\", \"d\", "
                                      "\"e\", \"f\"}};\nint go(int a) {{ return {}[a] != 0; }}\n",
                                      name, name)}};
}

// A type that only its own file uses.
Files own(std::string_view path, std::string_view head, std::size_t fields) {
  return {{"Cargo.toml", "[package]\nname = \"shop\"\nversion = \"0.1.0\"\n"},
          {std::string(path), std::string(head) + each_letter(fields, "    {0}: u32,\n") + "}\n"}};
}

// A type and two files that use it.
Files typed(std::string_view name, std::string_view language) {
  if (language == "java") {
    return repeated(2, "src/main/java/shop/{0}.java",
                    fmt::format("package shop;\nclass {{0}} {{{{ {} all; }}}}\n", name),
                    {{fmt::format("src/main/java/shop/{}.java", name),
                      fmt::format("package shop;\nclass {} {{ int a; int b; int c; }}\n", name)}});
  }
  return repeated(
      2, "src/{0}.ts",
      fmt::format("import {{{{ {0} }}}} from './types';\nexport const {{0}} = (all: {0}) => 1;\n",
                  name),
      {{"src/types.ts",
        fmt::format("export interface {} {{ a: number; b: number; c: number; }}\n", name)}});
}

// Constants in a namespace, and two files that use one of them.
Files namespaced(std::string_view name) {
  return repeated(
      2, "src/{0}.cc",
      fmt::format("#include \"limits.h\"\nint {{0}}() {{{{ return {0}::kFirst + {0}::kSecond + "
                  "{0}::kThird; }}}}\n",
                  name),
      {{"src/limits.h",
        fmt::format("namespace {} {{\nstatic const int kFirst = 1;\nstatic const int kSecond = 2;\n"
                    "static const int kThird = 3;\n}}\n",
                    name)}});
}

// Files of directives in one folder.
Files directives(std::size_t count) {
  return repeated(count, "conf/{0}.conf", each_letter(12, "{0}key value\n"),
                  {{"src/a.c", "int a;\n"}});
}

// Code that reads settings, and what a settings file is made from.
Files made_from(std::string_view path, std::string_view line) {
  return {{"shop/app.py", "import os\nA = os.environ['SHOP_A']\nB = os.getenv('SHOP_B')\n"},
          {std::string(path), "# Settings of $project\n\n" + std::string(line)}};
}

std::vector<Case> shapes() {
  const std::string client = "src/main/java/shop/Client.java";
  const std::string limits = "src/main/java/shop/Limits.java";
  return {
      {"BuildersOfOptions", builder("Builder", " = 1"), client, "builder_options", true},
      {"BuildersOfValues", builder("Builder", ""), client, "builder_options", false},
      {"OtherTypesWithFirstValues", builder("State", " = 1"), client, "builder_options", false},
      {"WhatAnOptionIsByDefault", builder("Builder", " = 1"), limits, "default_option", true},
      {"WhatAnotherFieldStartsWith", builder("State", " = 1"), limits, "default_option", false},
      {"BuildsOfAndroidApplications", android("mipmap-anydpi/launcher.xml"), "app/build.gradle.kts",
       "settings_path", true},
      {"SettingsOfSuchBuilds", android("mipmap-anydpi/launcher.xml"), "gradle.properties",
       "settings_path", true},
      {"BuildsOfAndroidLibraries", android("values/strings.xml"), "gradle.properties",
       "settings_path", false},
      {"TablesOfSettings", table("server_options"), "src/table.c", "settings_table", true},
      {"TablesThatAreCalledFlagsAlone", table("FLAGS"), "src/table.c", "settings_table", true},
      {"TablesOfFlagsOfAnything", table("node_flags"), "src/table.c", "settings_table", false},
      {"SettingsOfManyFieldsInTheirOwnFile", own("src/lib.rs", "struct Config {\n", 12),
       "src/lib.rs", "settings_fields", true},
      {"SettingsOfFewFieldsInTheirOwnFile", own("src/lib.rs", "struct Config {\n", 5), "src/lib.rs",
       "settings_fields", false},
      {"PropertiesWhereSettingsAreCalledSo", typed("ShopProperties", "java"),
       "src/main/java/shop/ShopProperties.java", "settings_named", true},
      {"PropertiesOfAnything", typed("ShopProperties", "typescript"), "src/types.ts",
       "settings_named", false},
      {"NamespacesOfSettings", namespaced("config"), "src/limits.h", "settings_fields", true},
      {"NamespacesOfAnything", namespaced("limits"), "src/limits.h", "settings_fields", false},
      {"FilesOfDirectives", directives(2), "conf/a.conf", "directives", true},
      {"FilesOfDirectivesToTryThingsWith", directives(6), "conf/a.conf", "directives", false},
      {"WhatSettingsAreMadeFrom", made_from("shop/settings.py.tmpl", "SHOP_A = '$name'\n"),
       "shop/settings.py.tmpl", "keys_read", true},
      {"WhatIsOnlyShownThere", made_from("shop/settings.py.tmpl", "#SHOP_B = 2\n"),
       "shop/settings.py.tmpl", "keys_read", true},
      {"WhatIsComparedThere", made_from("shop/settings.py.tmpl", "SHOP_A == 1\n"),
       "shop/settings.py.tmpl", "keys_read", false},
      {"SamplesToBeCopied", made_from("deploy/.env.template", "SHOP_A=1\n"), "deploy/.env.template",
       "settings_sample", true},
      {"TemplatesOfAnything", made_from("deploy/page.html.template", "SHOP_A=1\n"),
       "deploy/page.html.template", "settings_sample", false},
      {"TypesThatAreCalledSettings", typed("ShopSettings", "typescript"), "src/types.ts",
       "settings_named", true},
  };
}

std::vector<Case> reads() {
  return {
      {"KeysThatNoFileHolds", keyed("[env('SHOP_X'), config('mail.name')]"), "app/Reader.php",
       "reads_settings", true},
      {"KeysThatAFileHolds", keyed("[config('a.name'), config('b.name')]"), "app/Reader.php",
       "reads_settings", false},
      {"KeysOfAnObjectThatIsCalledSettings",
       {{"shop/app.py",
         "def go(app):\n  return app.config['PAGE_SIZE'], "
         "app.settings.getint('PAGE_COUNT')\n"}},
       "shop/app.py",
       "reads_settings",
       true},
      {"KeysOfAnyTable",
       {{"shop/app.py",
         "def go(table, config):\n  return table['PAGE_SIZE'], "
         "config['model'], config.get('url')\n"}},
       "shop/app.py",
       "reads_settings",
       false},
      {"KeysOfThePlatform",
       {{"lib/Place.java",
         "class Place {\n  String a = System.getProperty(\"java.version\");\n"
         "  String b = System.getenv(\"HOME\");\n}\n"}},
       "lib/Place.java",
       "reads_settings",
       false},
      {"KeysOfTheProductBesideThem",
       {{"lib/Place.java",
         "class Place {\n  String a = System.getProperty(\"java.version\");\n"
         "  String b = System.getenv(\"SHOP_HOME\");\n}\n"}},
       "lib/Place.java",
       "reads_settings",
       true},
      {"KeysOfRubysSettings",
       {{"lib/site.rb", "class Site\n  def go(site)\n    site.config['page_size']\n  end\nend\n"}},
       "lib/site.rb",
       "reads_settings",
       true},
  };
}

// A template of variables, and a file that declares values.
Files declared(std::string_view start, std::string_view path, std::string_view text) {
  std::string variables;
  for (const char* name : {"MAIL_HOST", "MAIL_PORT", "MAIL_USER", "DATABASE_URL", "SECRET_KEY"}) {
    variables += fmt::format("{}{}=\n", start, name);
  }
  return {{".env.sample", variables}, {std::string(path), std::string(text)}};
}

std::vector<Case> variables() {
  const std::string kind = "declares_variables";
  constexpr std::string_view kPython =
      "class Mail:\n  mail_host = 'a'\n  mail_port = 1\n  mail_user = 'a'\n"
      "  database_url = 'a'\n  secret_key = 'a'\n";
  constexpr std::string_view kFour =
      "class Mail:\n  mail_host = 'a'\n  mail_port = 1\n  mail_user = 'a'\n  secret_key = 'a'\n";
  constexpr std::string_view kScript =
      "export class Mail {\n  public mailHost = 'a';\n  public mailPort = 1;\n"
      "  public mailUser = 'a';\n  public databaseUrl = 'a';\n  public secretKey = 'a';\n}\n";
  return {
      {"VariablesOfATemplate", declared("", "shop/mail.py", kPython), "shop/mail.py", kind, true},
      {"VariablesBehindTheProductsName", declared("SHOP_", "shop/mail.ts", kScript), "shop/mail.ts",
       kind, true},
      {"TooFewVariables", declared("", "shop/mail.py", kFour), "shop/mail.py", kind, false},
      {"VariablesOfATest", declared("", "tests/test_mail.py", kPython), "tests/test_mail.py", kind,
       false},
      {"CodeIsNoSampleOfSettings",
       {{"src/templateSettings.ts", "export function useTemplateSettings() { return 1; }\n"}},
       "src/templateSettings.ts",
       "settings_sample",
       false},
  };
}

class SettingsSignals : public testing::TestWithParam<Case> {};

TEST_P(SettingsSignals, TellSettingsFromTheirLikes) {
  expect_told(GetParam(), [](const WikiGenerator& generator) -> const ScoreSheet& {
    return generator.settings_evidence();
  });
}

const auto kName = [](const auto& one) { return one.param.name; };

INSTANTIATE_TEST_SUITE_P(Company, SettingsSignals, testing::ValuesIn(company()), kName);
INSTANTIATE_TEST_SUITE_P(Shapes, SettingsSignals, testing::ValuesIn(shapes()), kName);
INSTANTIATE_TEST_SUITE_P(Variables, SettingsSignals, testing::ValuesIn(variables()), kName);
INSTANTIATE_TEST_SUITE_P(Reads, SettingsSignals, testing::ValuesIn(reads()), kName);

}  // namespace
}  // namespace kestrix
