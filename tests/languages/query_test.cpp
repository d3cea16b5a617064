#include "kestrix/syntax/query.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

#include "kestrix/languages/language.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 2> kKnown = {"name", "class"};

// What is said against a query of Python; "" when it is accepted.
std::string fault(std::string_view text) {
  try {
    const Query query(language_named("python")->grammar(), text, "python", kKnown);
    return {};
  } catch (const Error& error) {
    return error.what();
  }
}

TEST(Query, IsCheckedWhenItIsCompiled) {
  struct Case {
    std::string_view text, fault;
  };
  for (const auto& [text, expected] : {
           Case{"(class_definition name: (_) @name) @class", ""},
           Case{"((identifier) @_own (#eq? @_own \"x\"))", ""},
           Case{"(block) @enter (import_statement) @import (block) @members", ""},
           Case{"\n(class_definition name: (_) @nmae)", "line 2: nobody looks at \"@nmae\""},
           Case{"((identifier) (#eq? @other \"x\"))", "nobody looks at \"@other\""},
           Case{"(class_statement) @class", "the grammar has no \"class_statement\""},
           Case{"(class_definition title: (_) @name)", "the grammar has no field \"title\""},
           Case{"(block (_)* @name)", "can not be repeated"},
           Case{"((block) (#match? @name \"x\"))", "no such predicate"},
           Case{"(_) @name", "no type at its root"},
           Case{"(block", "is missing"},
       }) {
    const std::string found = fault(text);
    EXPECT_NE(found.find(expected), std::string::npos) << text << ": " << found;
    EXPECT_EQ(found.empty(), expected.empty()) << text << ": " << found;
  }
}

}  // namespace
}  // namespace kestrix::index
