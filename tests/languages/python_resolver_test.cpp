#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

TEST(PythonResolver, FindsModules) {
  check({
      {"from the top",
       {{"a.py", "import b\nimport p.q\nimport p"},
        {"b.py", ""},
        {"p/__init__.py", ""},
        {"p/q.py", ""}},
       {"a.py -> b.py", "a.py -> p/q.py", "a.py -> p/__init__.py"}},
      {"a name is the submodule when there is one, else its module's",
       {{"a.py", "from p import q, other\nfrom p import sub"},
        {"p/__init__.py", ""},
        {"p/q.py", ""},
        {"p/sub/__init__.py", ""}},
       {"a.py -> p/q.py", "a.py -> p/__init__.py", "a.py -> p/sub/__init__.py"}},
      {"everything comes from the package",
       {{"a.py", "from p import *"}, {"p/__init__.py", ""}, {"p/q.py", ""}},
       {"a.py -> p/__init__.py"}},
      {"a package goes before a module of its name",
       {{"a.py", "import p"}, {"p/__init__.py", ""}, {"p.py", ""}},
       {"a.py -> p/__init__.py"}},
      {"packages without __init__",
       {{"a.py", "from n.m import x\nfrom n import m\nimport n"}, {"n/m.py", ""}},
       {"a.py -> n/m.py"}},
      {"stubs and extension modules",
       {{"p/__init__.py", "from . import fast, typed"}, {"p/fast.pyx", ""}, {"p/typed.pyi", ""}},
       {"p/__init__.py -> p/fast.pyx", "p/__init__.py -> p/typed.pyi"}},
      {"a file is no dependency of itself", {{"a.py", "import a"}}, {}},
  });
}

TEST(PythonResolver, FollowsRelativeImports) {
  check({
      {"from a module and from a package",
       {{"p/__init__.py", "from .a import x"},
        {"p/a.py", "from . import b\nfrom .. import top"},
        {"p/b.py", "from .c.d import e"},
        {"p/c/__init__.py", "from ..a import x\nfrom . import d"},
        {"p/c/d.py", ""},
        {"top.py", ""}},
       {"p/__init__.py -> p/a.py", "p/a.py -> p/b.py", "p/a.py -> top.py", "p/b.py -> p/c/d.py",
        "p/c/__init__.py -> p/a.py", "p/c/__init__.py -> p/c/d.py"}},
      {"to nothing, and out of the repository",
       {{"p/__init__.py", ""},
        {"p/a.py", "from .gone import x\nfrom .... import y\nfrom ...z import w"}},
       {"unresolved 3"}},
      {"never to a module of that name elsewhere",
       {{"p/__init__.py", ""}, {"p/a.py", "from .b import x"}, {"b.py", ""}},
       {"unresolved 1"}},
  });
}

TEST(PythonResolver, StartsFromRoots) {
  check({
      {"src and lib at the top",
       {{"tests/test_a.py", "import p.a\nfrom q import b"},
        {"src/p/__init__.py", ""},
        {"src/p/a.py", "import p"},
        {"lib/q/b.py", ""}},
       {"tests/test_a.py -> src/p/a.py", "tests/test_a.py -> lib/q/b.py",
        "src/p/a.py -> src/p/__init__.py"}},
      {"a nested package from its own tree only",
       {{"examples/shop/cart/__init__.py", "import cart.items"},
        {"examples/shop/cart/items.py", ""},
        {"examples/shop/tests/test_cart.py", "from cart import items"},
        {"app/__init__.py", "import cart"}},
       {"examples/shop/cart/__init__.py -> examples/shop/cart/items.py",
        "examples/shop/tests/test_cart.py -> examples/shop/cart/items.py"}},
      {"a script sees its own folder, a module of a package does not",
       {{"tools/run.py", "import helper"},
        {"tools/helper.py", ""},
        {"p/__init__.py", ""},
        {"p/a.py", "import b"},
        {"p/b.py", ""}},
       {"tools/run.py -> tools/helper.py"}},
      {"the nearest root counts",
       {{"tests/test_a.py", "import utils"}, {"tests/utils.py", ""}, {"utils.py", ""}},
       {"tests/test_a.py -> tests/utils.py"}},
      {"a project's tests see its src",
       {{"libs/a/src/a/__init__.py", ""}, {"libs/a/tests/test_a.py", "import a"}},
       {"libs/a/tests/test_a.py -> libs/a/src/a/__init__.py"}},
      {"projects of one repository see each other, but not their tests",
       {{"libs/a/pyproject.toml", ""},
        {"libs/a/src/a/__init__.py", ""},
        {"libs/b/pyproject.toml", "[project]\ndependencies = [\"a>=1\"]"},
        {"libs/b/b/__init__.py", "import a\nfrom tests import conftest"},
        {"libs/a/tests/conftest.py", ""}},
       {"libs/b/b/__init__.py -> libs/a/src/a/__init__.py"}},
  });
}

TEST(PythonResolver, LeavesLibrariesOutside) {
  check({
      {"a library is no nested example folder",
       {{"src/p/a.py", "import pydantic\nfrom pydantic import main"},
        {"examples/pydantic/main.py", "import pydantic"},
        {"examples/pydantic/__init__.py", ""},
        {"vendor/sub/pydantic.py", ""}},
       {"examples/pydantic/main.py -> examples/pydantic/__init__.py"}},
      {"what the repository requires is a library even beside a folder of its name",
       {{"requirements-dev.txt", "# tools\n-r other.txt\nPyDantic[email] >=2 ; python_version>'3'"},
        {"pyproject.toml", "[project]\nname = 'own'\ndependencies = [\n  'rich-click~=1',\n]\n"},
        {"setup.cfg", "[options]\ninstall_requires =\n    attrs>=20\n"},
        {"setup.py", "setup(install_requires=[\n'click',\n])"},
        {"examples/a.py", "import pydantic, rich_click, attrs, click, own"},
        {"examples/pydantic/__init__.py", ""},
        {"examples/rich_click.py", ""},
        {"examples/attrs/__init__.py", ""},
        {"examples/click.py", ""},
        {"examples/own.py", ""}},
       {"examples/a.py -> examples/own.py"}},
      {"in each way to write a table",
       {{"a/pyproject.toml",
         "project.dependencies = ['l1']\n[project.optional-dependencies] # x\n"
         "dev = [ 'l2', # 'no1'\n]\n"},
        {"b/pyproject.toml",
         "[ \"project\" ] # x\n\"dependencies\" = ['l3[x]>=1', \"l4 ; a=='b'\"]\n"
         "description = '''\ndependencies = [\n\"no2\"]'''\n"},
        {"c/pyproject.toml",
         "[tool.poetry.group.'dev'.dependencies] # x\nl5 = {version = '1'}\n"
         "l6.version = '1'\n[tool.poetry]\ndependencies.l7 = '1'\n"
         "[dependency-groups]\nno3 = ['l8']\n"},
        {"x/a.py", "import l1, l2, l3, l4, l5, l6, l7, l8, no1, no2, no3"},
        {"x/l1/__init__.py", ""},
        {"x/l2.py", ""},
        {"x/l3.py", ""},
        {"x/l4.py", ""},
        {"x/l5.py", ""},
        {"x/l6.py", ""},
        {"x/l7.py", ""},
        {"x/l8.py", ""},
        {"x/no1.py", ""},
        {"x/no2.py", ""},
        {"x/no3.py", ""}},
       {"x/a.py -> x/no1.py", "x/a.py -> x/no2.py", "x/a.py -> x/no3.py"}},
      {"the standard library is no test package",
       {{"tests/logging/__init__.py", "import logging.handlers"},
        {"tests/logging/handlers.py", ""},
        {"tests/test_a.py", "import logging\nimport json"},
        {"tests/json.py", ""},
        {"p/__init__.py", ""},
        {"p/logging.py", "import logging"},
        {"json/data.py", ""}},
       {}},
      {"unless the repository is that module",
       {{"types.py", ""}, {"a.py", "import types"}},
       {"a.py -> types.py"}},
      {"a missing module of an own package is counted, a library is not",
       {{"p/__init__.py", "import p.gone\nfrom p.generated import x\nimport numpy.linalg"}},
       {"unresolved 2"}},
  });
}

TEST(PythonResolver, WeighsByUse) {
  EXPECT_THAT(weighted_edges_of({{"a.py",
                                  "from p import one, two as t, sub\nimport p\n"
                                  "one(one, t)\nsub.x\np.f(p.g)\n'one'  # two\n"},
                                 {"p/__init__.py", ""},
                                 {"p/sub.py", ""}}),
              ElementsAre("a.py -> p/__init__.py *7", "a.py -> p/sub.py *2"));
}

}  // namespace
}  // namespace kestrix::index
