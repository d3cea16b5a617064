#include <string>
#include <string_view>

#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

TEST(SwiftResolver, FindsWhatTheModuleDeclares) {
  check({
      {"types and functions, as far as they are used and reach other files",
       {{"App/A.swift", "let a = B(c)\nfunc f() { help(1); D() }"},
        {"App/B.swift", "struct B {}\nprivate class D {}"},
        {"Kit/C.swift", "func help(_ x: Int) {}\nlet c = 1"}},
       {"App/A.swift -> App/B.swift", "App/A.swift -> Kit/C.swift"}},
      {"a type that it extends, but not what extends its own",
       {{"A.swift", "struct A { func f() { g() } }"}, {"A+G.swift", "extension A { func g() {} }"}},
       {"A+G.swift -> A.swift"}},
      {"no function of which there are several",
       {{"A.swift", "func f() { help(1) }"},
        {"B.swift", "func help(_ x: Int) {}"},
        {"C.swift", "func help(_ x: String) {}"}},
       {}},
  });
}

constexpr std::string_view kPackage = R"(
let package = Package(
  name: "p",
  targets: [
    // .target(name: "Gone", path: "Sources/Core"),
    .target(name: "Core", dependencies: [.target(name: "Base"), .product(name: "X", package: "x")]),
    .target(name: "Base", path: "./Lib/"),
    .executableTarget(name: "Tool", dependencies: ["Core"], exclude: [name(".target(")]),
    .testTarget(name: "CoreTests"),
  ])
)";

TEST(SwiftResolver, KnowsTheModulesThatAFileImports) {
  const std::string package(kPackage);
  check({
      {"targets by their names or paths",
       {{"Package.swift", package},
        {"Sources/Tool/main.swift", "import Core\nrun(Order(), Amount())"},
        {"Sources/Core/Order.swift", "public struct Order { let tool: Tool }"},
        {"Lib/Amount.swift", "public struct Amount {}"},
        {"Sources/Tool/Tool.swift", "struct Tool {}"},
        {"Tests/CoreTests/Case.swift",
         "@testable import Core\nimport struct Base.Amount\n"
         "struct Case { let a: Amount; let o: Order }"}},
       {"Sources/Tool/main.swift -> Sources/Core/Order.swift",
        "Tests/CoreTests/Case.swift -> Lib/Amount.swift",
        "Tests/CoreTests/Case.swift -> Sources/Core/Order.swift"}},
      {"and what these hand on",
       {{"Package.swift", package},
        {"Sources/Tool/main.swift", "import Core\nAmount()"},
        {"Sources/Core/Exports.swift", "@_exported import Base"},
        {"Lib/Amount.swift", "public struct Amount {}"}},
       {"Sources/Tool/main.swift -> Lib/Amount.swift"}},
      {"a package in a folder of its own",
       {{"Kit/Package.swift", ".target(name: \"Kit\")"},
        {"Kit/Sources/Kit/K.swift", "public class K {}"},
        {"App/A.swift", "import Kit\nclass A: K {}"},
        {"App/B.swift", "class B: K {}"}},
       {"App/A.swift -> Kit/Sources/Kit/K.swift"}},
  });
}

}  // namespace
}  // namespace kestrix::index
