#include <gtest/gtest.h>

#include <string>

#include "kestrix/languages/csharp/directives.h"

namespace kestrix::index::csharp {
namespace {

struct Case {
  const char* name;
  std::string text;
  std::string masked;  ///< what the parser is given; "" when it is given the text itself
};

void check(std::initializer_list<Case> cases) {
  for (const auto& [name, text, masked] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(mask(text).value_or(""), masked);
    EXPECT_TRUE(masked.empty() || masked.size() == text.size());
  }
}

TEST(CSharpMask, BlanksDirectives) {
  check({
      {"none", "class A { int b; } // #if", ""},
      {"lines", "#region R\nclass A\n  #endregion\n{}", "         \nclass A\n            \n{}"},
      {"not in text",
       "var a = @\"\n#if \"\"\n\"; var b = \"\"\"\n#else\n\"\"\";/*\n#if */\n#line 1\n",
       "var a = @\"\n#if \"\"\n\"; var b = \"\"\"\n#else\n\"\"\";/*\n#if */\n       \n"},
      {"without their partner", "#endif\n#else\n#elif X\na", "      \n     \n       \na"},
  });
}

TEST(CSharpMask, KeepsBranchesThatStandOnTheirOwn) {
  check({
      {"declarations", "#if A\nint a;\n#elif B\nint b;\n#else\nint c;\n#endif\n",
       "     \nint a;\n       \nint b;\n     \nint c;\n      \n"},
      {"entries of a list", "f(\n#if A\na,\n#else\nb,\n#endif\nc)",
       "f(\n     \na,\n     \nb,\n      \nc)"},
      {"heads of one body", "#if A\nclass A {\n#else\nclass B {\n#endif\n}",
       "     \nclass A {\n     \n         \n      \n}"},
      {"parts of an expression", "x = a\n#if A\n+ b;\n#else\n+ c;\n#endif\n",
       "x = a\n     \n+ b;\n     \n    \n      \n"},
      {"one in another", "#if A\na;\n#else\nb(\n#if B\nc);\n#else\nd);\n#endif\n#endif\n",
       "     \na;\n     \nb(\n     \nc);\n     \n   \n      \n      \n"},
      {"brackets in literals do not count", "#if A\na = '(' + \"{\";\n#else\nb;\n#endif\n",
       "     \na = '(' + \"{\";\n     \nb;\n      \n"},
  });
}

}  // namespace
}  // namespace kestrix::index::csharp
