#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "kestrix/languages/c_family/masking.h"

namespace kestrix::index {
namespace {

struct Case {
  const char* name;
  std::string text;
  std::string masked;  ///< "~" for each byte that the parser does not see; "" when it sees all
};

void check(std::initializer_list<Case> cases) {
  for (const auto& [name, text, masked] : cases) {
    SCOPED_TRACE(name);
    std::string seen = masked.empty() ? text : masked;
    std::ranges::replace(seen, '~', ' ');
    EXPECT_EQ(mask_macros(text).value_or(text), seen);
  }
}

TEST(CFamilyMask, TakesOutConditionalsWhereNoneMayStand) {
  check({
      {"whole declarations", "#if A\nint a;\n#elif B\nint b;\n#else\n#endif\nint c;\n", ""},
      {"enumerators", "enum e {\n  A,\n#ifdef X\n  B,\n#endif\n  C\n};\n", ""},
      {"labels", "switch (a) {\n#ifdef X\n  case 1:\n#endif\n  case 2: f();\n}\n", ""},
      {"elements", "T t[] = {\n#if A\n  {1},\n#else\n  {2},\n#endif\n};\n",
       "T t[] = {\n~~~~~\n  {1},\n~~~~~\n  {2},\n~~~~~~\n};\n"},
      {"an expression", "x = a\n#if A\n+ b;\n#else\n+ c;\n#endif\ny;\n",
       "x = a\n~~~~~\n+ b;\n~~~~~\n~~~~\n~~~~~~\ny;\n"},
      {"arguments", "f(a\n#ifdef A\n, b\n#endif\n);\n", "f(a\n~~~~~~~~\n, b\n~~~~~~\n);\n"},
      {"half a block", "#if A\nif (a) {\n#else\nif (b) {\n#endif\n}\n",
       "~~~~~\nif (a) {\n~~~~~\n~~~~~~~~\n~~~~~~\n}\n"},
      {"initializers", "A() :\n#if X\na_(1),\n#endif // X\nb_(2) {}\n",
       "A() :\n~~~~~\na_(1),\n~~~~~~~~~~~\nb_(2) {}\n"},
      {"one in another",
       "f(\n#if A\na\n#if B\n+ b\n#else\n+ c\n#endif\n#else\nd\n#endif /* two\n lines */\n);\n",
       "f(\n~~~~~\na\n~~~~~\n+ b\n~~~~~\n~~~\n~~~~~~\n~~~~~\n~\n~~~~~~~~~~~~~\n~~~~~~~~~\n);\n"},
      {"what nobody compiles", "#if 0\nit's {\n#else\nint a;\n#endif\n",
       "#if 0\n~~~~~~\n#else\nint a;\n#endif\n"},
      {"in texts and comments", "a = \"(\"; // (\n/* {\n#if A\n*/ b = '{';\n#if A\nc;\n#endif\n",
       ""},
  });
}

TEST(CFamilyMask, TakesOutMacrosThatAreNoCode) {
  check({
      {"specifiers", "API int f(void);\nint WINAPI f(int a);\nstatic API T *g(T *t) {\n",
       "~~~ int f(void);\nint ~~~~~~ f(int a);\nstatic ~~~ T *g(T *t) {\n"},
      {"types", "FILE *f(void);\nunsigned int MAX(int a);\nUINT f(int a);\nreturn MIN(a, b);\n",
       ""},
      {"behind parameters", "void f(int a) LOCKED(m_) override;\nvoid f() API;\n",
       "void f(int a) ~~~~~~~~~~ override;\nvoid f() ~~~;\n"},
      {"behind a name", "ns::Mutex mutex_;\nns::Map map_ GUARDED_BY(mutex_);\n",
       "ns::Mutex mutex_;\nns::Map map_ ~~~~~~~~~~~~~~~~~~;\n"},
      {"announcements", "class API Name;\nstruct NAME name;\nclass NAME;\n",
       "class ~~~ Name;\nstruct NAME name;\nclass NAME;\n"},
      {"statements", "if (a) RETURN(b);\nFOO(a);\nelse FOO(b);\n", ""},
      {"lists of enumerators", "enum e {\n#define X(n) A_##n,\n  MAP(X)\n#undef X\n  LAST\n};\n",
       "enum e {\n~~~~~~~~~~~~~~~~~~~\n  ~~~~~~\n#undef X\n  LAST\n};\n"},
      {"members", "class A {\n  Q_OBJECT\n  MOCK(int, f, ());\n  int b;\n};\n",
       "class A {\n  ~~~~~~~~\n  ~~~~~~~~~~~~~~~~;\n  int b;\n};\n"},
      {"registrations", "REGISTER(a)\nint b;\n", ""},
  });
}

}  // namespace
}  // namespace kestrix::index
