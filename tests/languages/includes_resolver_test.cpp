#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

TEST(IncludeResolver, FindsQuotedNames) {
  check({
      {"beside the file, then from the top",
       {{"a/x.c",
         "#include \"y.h\"\n#include \"a/z.h\"\n#include \"../b/w.h\"\n#include \"./v.h\""},
        {"a/y.h", ""},
        {"y.h", ""},
        {"a/z.h", ""},
        {"b/w.h", ""},
        {"a/v.h", ""}},
       {"a/x.c -> a/y.h", "a/x.c -> a/z.h", "a/x.c -> b/w.h", "a/x.c -> a/v.h"}},
      {"below include and src of a folder above",
       {{"lib/core/x.cc", "#include \"p/y.h\"\n#include \"q/z.h\""},
        {"lib/include/p/y.h", ""},
        {"other/include/p/y.h", ""},
        {"src/q/z.h", ""},
        {"other/src/q/z.h", ""}},
       {"lib/core/x.cc -> lib/include/p/y.h", "lib/core/x.cc -> src/q/z.h"}},
      {"the only one that ends in the name",
       {{"src/x.c", "#include \"hiredis.h\"\n#include \"net/tcp.h\""},
        {"deps/hiredis/hiredis.h", ""},
        {"deps/stack/lib/net/tcp.h", ""}},
       {"src/x.c -> deps/hiredis/hiredis.h", "src/x.c -> deps/stack/lib/net/tcp.h"}},
      {"of several the nearest, else the one from the root that others use",
       {{"app/one/x.c", "#include \"util.h\"\n#include \"only.h\""},
        {"app/two/deep/util.h", ""},
        {"third/deep/util.h", ""},
        {"main.c", "#include \"util.h\""},
        {"third/deep/only.h", ""}},
       {"app/one/x.c -> app/two/deep/util.h", "app/one/x.c -> third/deep/only.h",
        "main.c -> third/deep/util.h"}},
      {"files of any kind, and what leads out of the repository",
       {{"x.c", "#include \"t.inc\"\n#include \"../up.h\"\n#include \"gone.h\""}, {"t.inc", ""}},
       {"x.c -> t.inc", "unresolved 2"}},
  });
}

TEST(IncludeResolver, FindsAngledNames) {
  check({
      {"from the roots",
       {{"db/x.cc", "#include <p/y.h>\n#include <config.h>\n#include <zlib.h>"},
        {"include/p/y.h", ""},
        {"config.h", ""}},
       {"db/x.cc -> include/p/y.h", "db/x.cc -> config.h"}},
      {"a bare name needs a root that something speaks for",
       {{"src/x.c", "#include <zlib.h>\n#include <lua.h>"},
        {"src/y.c", "#include \"lauxlib.h\""},
        {"tests/data/broken/zlib.h", ""},
        {"deps/lua/lua.h", ""},
        {"deps/lua/lauxlib.h", ""}},
       {"src/x.c -> deps/lua/lua.h", "src/y.c -> deps/lua/lauxlib.h"}},
      {"not the one beside the file when there is another",
       {{"src/x.c", "#include <sds.h>"}, {"src/sds.h", ""}, {"deps/h/sds.h", ""}},
       {"src/x.c -> deps/h/sds.h"}},
      {"nor when most includes start beside the file",
       {{"src/x.c", "#include <sds.h>\n#include \"only.h\""},
        {"y.c", "#include \"only.h\""},
        {"src/only.h", ""},
        {"src/sds.h", ""},
        {"third/h/sds.h", ""}},
       {"src/x.c -> third/h/sds.h", "src/x.c -> src/only.h", "y.c -> src/only.h"}},
      {"the own folder when there is no other",
       {{"src/x.c", "#include <own.h>"}, {"src/own.h", ""}},
       {"src/x.c -> src/own.h"}},
      {"a gap among own headers is counted, a library is not",
       {{"x.cc", "#include <p/y.h>\n#include <p/generated.h>\n#include <boost/any.hpp>"},
        {"include/p/y.h", ""}},
       {"x.cc -> include/p/y.h", "unresolved 1"}},
  });
}

TEST(IncludeResolver, LeavesSystemHeadersOutside) {
  check({
      {"in angle brackets",
       {{"src/x.c", "#include <string.h>\n#include <sys/types.h>\n#include <vector>"},
        {"compat/string.h", ""},
        {"include/string.h", ""},
        {"compat/sys/types.h", ""},
        {"src/vector", ""}},
       {}},
      {"in quotes they are local when they stand near",
       {{"src/x.c", "#include \"string.h\"\n#include \"tar.h\"\n#include \"poll.h\""},
        {"src/string.h", ""},
        {"tar.h", ""},
        {"compat/win/poll.h", ""}},
       {"src/x.c -> src/string.h", "src/x.c -> tar.h"}},
  });
}

TEST(IncludeResolver, ReadsCompileCommands) {
  const std::string commands = R"([
    {"directory": "/build/machine/p/out", "file": "../src/x.c",
     "command": "cc -I../odd -isystem /build/machine/p/sys -I/usr/include -c ../src/x.c"},
    {"directory": "/build/machine/p", "file": "src/x.c", "arguments": ["cc", "-I", "more"]},
    7, {"command": 7}])";
  check({
      {"its folders go first, wherever it was written",
       {{"compile_commands.json", commands},
        {"src/x.c", "#include \"a.h\"\n#include <string.h>\n#include <m.h>"},
        {"include/a.h", ""},
        {"odd/a.h", ""},
        {"sys/string.h", ""},
        {"more/m.h", ""}},
       {"src/x.c -> odd/a.h", "src/x.c -> sys/string.h", "src/x.c -> more/m.h"}},
      {"a broken one is as none",
       {{"compile_commands.json", "[{"}, {"x.c", "#include \"a.h\""}, {"include/a.h", ""}},
       {"x.c -> include/a.h"}},
  });
}

TEST(IncludeResolver, WeighsByUse) {
  EXPECT_THAT(
      weighted_edges_of({{"x.cc",
                          "#include \"a.h\"\n#include \"b.h\"\n"
                          "Thing f(Thing* t) { return make(t->make(), LIMIT, \"Thing\"); }"},
                         {"a.h", "#define LIMIT 3\nclass Thing {};\nThing make(Thing*);"},
                         {"b.h", "int unused();"}}),
      ElementsAre("x.cc -> a.h *5", "x.cc -> b.h *1"));
}

}  // namespace
}  // namespace kestrix::index
