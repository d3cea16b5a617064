#include "kestrix/roles/repository_roles.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kestrix {
namespace {

// A repository in a few words.
class World {
 public:
  World& file(const std::string& path, std::string_view language = {}) {
    files_[path] = {.path = {}, .language = language, .declares = !language.empty()};
    return *this;
  }
  World& code(const std::string& path) { return file(path, "python"); }
  World& prose(const std::string& path) {
    file(path);
    files_[path].document = true;
    return *this;
  }
  World& written(const std::string& path) {
    code(path);
    files_[path].written = true;
    return *this;
  }
  World& tests(const std::string& path) {
    code(path);
    files_[path].holds_tests = true;
    return *this;
  }
  World& licence(const std::string& path, std::vector<std::string> holders) {
    licences_[path] = std::move(holders);
    return file(path);
  }
  World& edge(const std::string& source, const std::string& target) {
    edges_.emplace_back(source, target);
    return *this;
  }
  World& attributes(const std::string& folder, const std::string& text) {
    attributes_[folder] = text;
    return *this;
  }

  // "role: evidence" of each role of a file, joined by "; ".
  std::string explained(const std::string& path) const {
    const RepositoryRoles roles(judged());
    const auto evidence = roles.explain(place(path));
    EXPECT_EQ(roles.all()[place(path)], roles_of(evidence)) << path;
    std::string text;
    for (const RoleEvidence& piece : evidence) {
      if (!text.empty()) text += "; ";
      text += fmt::format("{}: {}", name_of(piece.role), piece.text);
    }
    return text;
  }

  JudgedRepository judged() const {
    JudgedRepository repository;
    for (const auto& [path, file] : files_) {
      repository.files.push_back(file);
      repository.files.back().path = path;
    }
    repository.targets.resize(files_.size());
    repository.dependents.resize(files_.size());
    for (const auto& [source, target] : edges_) {
      repository.targets[place(source)].push_back(place(target));
      ++repository.dependents[place(target)];
    }
    for (const auto& [path, holders] : licences_) {
      repository.licences.push_back({place(path), holders});
    }
    for (const auto& [folder, text] : attributes_) repository.attributes.add(folder, text);
    return repository;
  }

 private:
  std::uint32_t place(const std::string& path) const {
    return static_cast<std::uint32_t>(std::distance(files_.begin(), files_.find(path)));
  }

  std::map<std::string, JudgedFile> files_;
  std::vector<std::pair<std::string, std::string>> edges_;
  std::map<std::string, std::vector<std::string>> licences_;
  std::map<std::string, std::string> attributes_;
};

World shop() {
  World world;
  world.licence("LICENSE", {"acme"}).code("shop/cart.py").code("shop/tax.py").code("shop/mail.py");
  return world.edge("shop/cart.py", "shop/tax.py");
}

TEST(RepositoryRoles, KnowAnotherProjectByItsLicence) {
  World world = shop().licence("deps/zip/COPYING", {"doe", "jane"}).code("deps/zip/inflate.py");
  world.edge("shop/cart.py", "deps/zip/inflate.py");
  EXPECT_EQ(world.explained("deps/zip/inflate.py"),
            "vendored: below deps/zip/: deps/zip/COPYING names other holders of the copyright");
  EXPECT_EQ(world.explained("shop/cart.py"), "");
  world.edge("deps/zip/inflate.py", "shop/tax.py");
  EXPECT_EQ(world.explained("deps/zip/inflate.py"), "") << "another project knows no product";
}

TEST(RepositoryRoles, AreNotMisledByOtherLicences) {
  EXPECT_EQ(shop().licence("kit/LICENSE", {"acme", "doe"}).code("kit/a.py").explained("kit/a.py"),
            "")
      << "a holder in common";
  EXPECT_EQ(shop().licence("kit/LICENSE-fonts", {"doe"}).code("kit/a.py").explained("kit/a.py"), "")
      << "not of the whole folder";
  World most = shop().licence("src/LICENSE", {"doe"});
  for (const auto* name : {"a", "b", "c", "d"}) most.code(fmt::format("src/{}.py", name));
  EXPECT_EQ(most.explained("src/a.py"), "") << "half of the code";
  World family = shop().code("packages/a/a.py");
  for (const auto* name : {"a", "b", "c"}) {
    family.licence(fmt::format("packages/{}/LICENSE", name), {"doe"});
  }
  EXPECT_EQ(family.explained("packages/a/a.py"), "") << "another name of the same holder";
  EXPECT_EQ(World().code("a/a.py").code("b.py").licence("a/LICENSE", {"doe"}).explained("a/a.py"),
            "")
      << "nobody to tell it from";
}

TEST(RepositoryRoles, KnowOtherProjectsByTheirNeighbours) {
  World world = shop().code("deps/list/list.py").code("deps/glue/glue.py").code("deps/top.py");
  world.edge("deps/glue/glue.py", "shop/tax.py").edge("shop/tax.py", "deps/glue/glue.py");
  world.edge("shop/tax.py", "deps/list/list.py").code("deps/main/main.py");
  world.edge("tests/main.py", "deps/main/main.py").code("tests/main.py");
  for (const auto* name : {"jpeg", "lua", "zip"}) {
    world.code(fmt::format("deps/{}/a.py", name));
    world.licence(fmt::format("deps/{}/LICENSE", name), {name});
  }
  EXPECT_EQ(world.explained("deps/list/list.py"),
            "vendored: below deps/list/: it stands among 3 other projects");
  EXPECT_EQ(world.explained("deps/glue/glue.py"), "");
  EXPECT_EQ(world.explained("deps/top.py"), "");
  EXPECT_EQ(world.explained("deps/main/main.py"), "") << "nothing but tests needs it";
  world.code("deps/b/b.py");
  EXPECT_EQ(world.explained("deps/list/list.py"), "") << "fewer than half";
}

TEST(RepositoryRoles, KnowOtherProjectsByTheirVersions) {
  World world = shop().file("lib/zip-1.2.11/README").code("lib/zip-1.2.11/zip.py");
  EXPECT_EQ(world.explained("lib/zip-1.2.11/zip.py"),
            "vendored: below lib/zip-1.2.11/: a version in the name of lib/zip-1.2.11/");
  EXPECT_EQ(shop().code("src/main/scala-2.13/a.py").explained("src/main/scala-2.13/a.py"), "");
  EXPECT_EQ(shop().file("web/chart-4.4.1.min.js").file("web/cart-2.js").explained("web/cart-2.js"),
            "");
  EXPECT_EQ(shop().file("web/chart-4.4.1.js").explained("web/chart-4.4.1.js"),
            "vendored: a version in a script's name");
}

TEST(RepositoryRoles, LetTheCodeDenyWhatNamesSuggest) {
  const std::string tool = "tool: below the folder of tools tools/";
  EXPECT_EQ(shop().code("tools/log.py").explained("tools/log.py"), tool);
  EXPECT_EQ(
      shop().code("tools/log.py").edge("shop/cart.py", "tools/log.py").explained("tools/log.py"),
      "");
  World helper = shop().code("shop/testutils/a.py").edge("shop/cart.py", "shop/testutils/a.py");
  EXPECT_EQ(helper.explained("shop/testutils/a.py"),
            "tool: below the folder of test tools shop/testutils/")
      << "a file may hold its tests";
  World recipe = shop().code("tools/log.py").code("setup.py").edge("setup.py", "tools/log.py");
  EXPECT_EQ(recipe.explained("tools/log.py"), tool) << "only what builds the product needs it";
  World chain = shop().code("snippets/a.py").code("snippets/b.py");
  chain.edge("shop/cart.py", "snippets/a.py").edge("snippets/a.py", "snippets/b.py");
  EXPECT_EQ(chain.explained("snippets/b.py"), "");

  World seller = shop().code("vendor/models.py").edge("shop/cart.py", "vendor/models.py");
  EXPECT_EQ(seller.explained("vendor/models.py"), "vendored: below vendor/");
  EXPECT_EQ(seller.edge("vendor/models.py", "shop/tax.py").explained("vendor/models.py"), "");

  EXPECT_EQ(shop().code("gen/main.py").explained("gen/main.py"), "");
  EXPECT_EQ(shop().code("gen/main.py").written("gen/api.py").explained("gen/main.py"),
            "generated: below gen/");
  EXPECT_EQ(shop().code("website/app.py").explained("website/app.py"), "");
  EXPECT_EQ(shop().code("website/app.py").prose("website/a.md").explained("website/app.py"),
            "documentation: below the folder of documentation website/");
}

TEST(RepositoryRoles, KnowWhatProgramsWrote) {
  EXPECT_EQ(shop().written("shop/api.py").explained("shop/api.py"),
            "generated: its text is a program's work");
  World client = shop().file("client/.openapi-generator/VERSION").code("client/api/pets.py");
  EXPECT_EQ(client.explained("client/api/pets.py"),
            "generated: below client/, which holds .openapi-generator/VERSION");
}

TEST(RepositoryRoles, TellTestsFromWhatTestsRead) {
  World world = shop().code("tests/helper.py").edge("tests/test_a.py", "tests/helper.py");
  world.tests("tests/test_a.py")
      .file("tests/order.json")
      .prose("tests/README.md")
      .code("tests/fixtures/used.py");
  world.code("tests/fixtures/read.py").edge("tests/helper.py", "tests/fixtures/used.py");
  for (int number = 0; number < 6; ++number) world.code(fmt::format("tests/cases/c{}.py", number));
  const std::string test = "test: below the test folder tests/";
  EXPECT_EQ(world.explained("tests/test_a.py"), test);
  EXPECT_EQ(world.explained("tests/helper.py"), test);
  EXPECT_EQ(world.explained("tests/README.md"), test);
  EXPECT_EQ(world.explained("tests/order.json"), test + "; test data: data in a folder of tests");
  EXPECT_EQ(world.explained("tests/fixtures/used.py"), test);
  EXPECT_EQ(world.explained("tests/fixtures/read.py"),
            test + "; test data: below the folder of test data tests/fixtures/");
  EXPECT_EQ(world.explained("tests/cases/c1.py"),
            test + "; test data: in a folder of tests, without tests, and nothing depends on it");
  world.tests("tests/cases/c1.py");
  EXPECT_EQ(world.explained("tests/cases/c1.py"), test);
}

TEST(RepositoryRoles, LeaveTheLastWordToAttributes) {
  World world = shop().code("vendor/own/a.py").code("shop/api.py").code("help/a.py");
  world.code("web/a.css")
      .attributes("",
                  "vendor/own/** -linguist-vendored\n*.css linguist-vendored\n"
                  "help/** linguist-documentation\n");
  world.attributes("shop", "api.py linguist-generated=true linguist-vendored\n");
  EXPECT_EQ(world.explained("vendor/own/a.py"), "");
  EXPECT_EQ(world.explained("shop/api.py"),
            "generated: linguist-generated in shop/.gitattributes:1; "
            "vendored: linguist-vendored in shop/.gitattributes:1");
  EXPECT_EQ(world.explained("help/a.py"),
            "documentation: linguist-documentation in .gitattributes:3");
  EXPECT_EQ(world.explained("web/a.css"), "")
      << "a kind of files says nothing of where they are from";
}

TEST(RepositoryRoles, TakeLinearTimeForDeepFolders) {
  World world = shop();
  std::string folder = "vendor";
  for (int depth = 0; depth < 1000; ++depth) {
    folder += depth % 2 == 0 ? "/zip-1.2" : "/vendor";
    world.code(folder + "/a.py").edge(folder + "/a.py", "shop/tax.py");
    world.licence(folder + "/LICENSE", {"doe"});
  }
  JudgedRepository judged = world.judged();
  const auto start = std::chrono::steady_clock::now();
  const RepositoryRoles roles(std::move(judged));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace kestrix
