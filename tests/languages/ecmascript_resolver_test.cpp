#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

TEST(EcmascriptResolver, FindsRelativePaths) {
  check({
      {"extensions are tried, each dialect its own first",
       {{"a.ts", "import './b'"}, {"c.js", "import './b'"}, {"b.ts", ""}, {"b.js", ""}},
       {"a.ts -> b.ts", "c.js -> b.js"}},
      {".js is written for its source",
       {{"a.ts", "import './b.js'; import './c.js'; import './d.mjs'; import './e.jsx'"},
        {"b.ts", ""},
        {"b.js", ""},
        {"c.tsx", ""},
        {"d.mts", ""},
        {"e.tsx", ""}},
       {"a.ts -> b.ts", "a.ts -> c.tsx", "a.ts -> d.mts", "a.ts -> e.tsx"}},
      {"declarations, other files, names with dots",
       {{"src/a.ts",
         "import './d'; import '../x.json'; import './b.service'; import './s.css?inline'"},
        {"src/d.d.ts", ""},
        {"x.json", ""},
        {"src/b.service.ts", ""},
        {"src/s.css", ""}},
       {"src/a.ts -> src/d.d.ts", "src/a.ts -> x.json", "src/a.ts -> src/b.service.ts",
        "src/a.ts -> src/s.css"}},
      {"folders: their index, or what their package.json says",
       {{"a/x.ts", "import '.'; import '..'; import '../b'; import '../c/'; import '../d'"},
        {"a/index.ts", ""},
        {"index.ts", ""},
        {"a.ts", ""},
        {"b/index.tsx", ""},
        {"c.ts", ""},
        {"c/index.js", ""},
        {"d/package.json", R"({"main": "./real"})"},
        {"d/real.js", ""},
        {"d/index.js", ""}},
       {"a/x.ts -> a/index.ts", "a/x.ts -> index.ts", "a/x.ts -> b/index.tsx",
        "a/x.ts -> c/index.js", "a/x.ts -> d/real.js"}},
      {"every way to import",
       {{"a.js",
         "export * from './b'; const c = require('./c'); async () => { await import('./d') };"
         "let e: typeof import('./e')"},
        {"b.js", ""},
        {"c.js", ""},
        {"d.js", ""},
        {"e.js", ""}},
       {"a.js -> b.js", "a.js -> c.js", "a.js -> d.js", "a.js -> e.js"}},
      {"what is missing is counted, what lies outside is not",
       {{"a.ts",
         "import './gone'; import '../../outside'; import 'react'; import 'node:fs'; import "
         "'https://x.y/z.js'; import '@scope/x/y'; import ''"}},
       {"unresolved 2"}},
  });
}

TEST(EcmascriptResolver, FollowsConfigurations) {
  check({
      {"paths and baseUrl, with comments and trailing commas",
       {{"tsconfig.json",
         "\xEF\xBB\xBF// comment\n{\"compilerOptions\": {\"baseUrl\": \"./src\", /* , } */ "
         "\"paths\": {"
         "\"@app/*\": [\"gone/*\", \"app/*\"], \"exact\": [\"app/exact.ts\",], \"@app/deep/*\": "
         "[\"deep/*\"],},},}"},
        {"src/x.ts",
         "import '@app/a'; import 'exact'; import 'lib/b'; import '@app/deep/c'; import 'react'"},
        {"src/app/a.ts", ""},
        {"src/app/exact.ts", ""},
        {"src/lib/b.ts", ""},
        {"src/app/deep/c.ts", ""},
        {"src/deep/c.ts", ""}},
       {"src/x.ts -> src/app/a.ts", "src/x.ts -> src/app/exact.ts", "src/x.ts -> src/lib/b.ts",
        "src/x.ts -> src/deep/c.ts"}},
      {"a base is extended, the nearest configuration goes first",
       {{"config/tsconfig.base.json",
         R"({"compilerOptions": {"paths": {"@/*": ["../shared/*"], "#in/*": ["../shared/*"]}}})"},
        {"one/tsconfig.json", R"({"extends": "../config/tsconfig.base"})"},
        {"one/x.ts", "import '@/a'; import '#in/b'"},
        {"two/jsconfig.json", R"({"compilerOptions": {"paths": {"@/*": ["./*"]}}})"},
        {"two/x.js", "import '@/a'"},
        {"two/a.js", ""},
        {"shared/a.ts", ""},
        {"shared/b.ts", ""}},
       {"one/x.ts -> shared/a.ts", "one/x.ts -> shared/b.ts", "two/x.js -> two/a.js"}},
      {"configurations of a solution, and loops",
       {{"tsconfig.json", R"({"files": [], "extends": "./tsconfig.json"})"},
        {"tsconfig.app.json",
         R"({"extends": ["./tsconfig.json", "./tsconfig.app.json"], "compilerOptions": {"paths": {"~lib/*": ["${configDir}/lib/*"]}}})"},
        {"x.ts", "import '~lib/a'"},
        {"lib/a.ts", ""}},
       {"x.ts -> lib/a.ts"}},
      {"nothing leaves the repository",
       {{"tsconfig.json",
         R"({"compilerOptions": {"paths": {"@out/*": ["../../*"], "@in/*": ["./in/*"]}}})"},
        {"a.ts", "import '@out/b'; import '@in/../../b'"},
        {"b.ts", ""}},
       {"unresolved 2"}},
      {"malformed ones are nothing",
       {{"tsconfig.json", "{\"compilerOptions\": ["},
        {"package.json", "[1,"},
        {"sub/tsconfig.json",
         R"({"compilerOptions": {"baseUrl": 3, "paths": {"a": "b", "c": [1]}}, "extends": {}})"},
        {"sub/package.json", R"({"name": 1, "exports": 3, "workspaces": {"packages": 1}})"},
        {"sub/a.ts", "import './b'; import 'a'"},
        {"sub/b.ts", ""}},
       {"sub/a.ts -> sub/b.ts"}},
      {"an alias for the sources needs no configuration",
       {{"web/package.json", "{}"}, {"web/src/a.vue.ts", "import '@/b'"}, {"web/src/b.ts", ""}},
       {"web/src/a.vue.ts -> web/src/b.ts"}},
  });
}

TEST(EcmascriptResolver, FindsPackagesOfTheWorkspace) {
  check({
      {"by name, through exports, unbuilt targets from their source",
       {{"package.json", R"({"name": "root", "workspaces": ["packages/*", "!packages/old"]})"},
        {"packages/a/package.json",
         R"({"name": "@w/a", "exports": {".": {"types": "./dist/index.d.ts", "import": "./dist/index.mjs"},
             "./sub": "./dist/esm/sub.js", "./feat/*": {"default": "./lib/feat/*.js"}, "./hidden": null}})"},
        {"packages/a/src/index.ts", ""},
        {"packages/a/src/sub.ts", ""},
        {"packages/a/src/feat/x.tsx", ""},
        {"packages/b/package.json", R"({"name": "b", "main": "dist/b.cjs.js"})"},
        {"packages/b/src/index.ts",
         "import '@w/a'; import '@w/a/sub'; import '@w/a/feat/x'; import 'b/src/util'"},
        {"packages/b/src/util.ts", "import 'b'"}},
       {"packages/b/src/index.ts -> packages/a/src/index.ts",
        "packages/b/src/index.ts -> packages/a/src/sub.ts",
        "packages/b/src/index.ts -> packages/a/src/feat/x.tsx",
        "packages/b/src/index.ts -> packages/b/src/util.ts",
        "packages/b/src/util.ts -> packages/b/src/index.ts"}},
      {"lists of other tools",
       {{"pnpm-workspace.yaml",
         "# x\npackages:\n  - 'libs/**' # all\n  - \"tools/{x,y}\"\ncatalog:\n  - no\n"},
        {"libs/deep/a/package.json", R"({"name": "a", "main": "index.js"})"},
        {"libs/deep/a/index.js", ""},
        {"tools/y/package.json", R"({"name": "y"})"},
        {"tools/y/index.ts", "import 'a'; import 'z'"},
        {"tools/z/package.json", R"({"name": "z"})"},
        {"tools/z/index.ts", ""}},
       {"tools/y/index.ts -> libs/deep/a/index.js"}},
      {"the repository's own package is known to its examples",
       {{"package.json", R"({"name": "own", "exports": {"import": "./dist/main.js"}})"},
        {"src/main.ts", ""},
        {"examples/x/package.json", R"({"name": "x", "dependencies": {"own": "*"}})"},
        {"examples/x/index.js", "import own from 'own'"}},
       {"examples/x/index.js -> src/main.ts"}},
      {"a library is no folder of its name",
       {{"package.json", R"({"name": "own", "workspaces": ["packages/*"]})"},
        {"src/a.ts", "import 'react'; import 'lodash'; import 'vendored'"},
        {"examples/react/package.json", R"({"name": "react"})"},
        {"examples/react/index.js", ""},
        {"lodash/index.js", ""},
        {"src/vendored.ts", ""}},
       {}},
      {"internal names",
       {{"package.json",
         R"({"imports": {"#util": "./src/util.js", "#db/*": {"node": "./dist/db/*.js"}, "#dep": "dep"}})"},
        {"src/a.ts", "import '#util'; import '#db/pool'; import '#dep'; import '#gone'"},
        {"src/util.ts", ""},
        {"src/db/pool.ts", ""}},
       {"src/a.ts -> src/util.ts", "src/a.ts -> src/db/pool.ts", "unresolved 1"}},
      {"a relative path into what is not built yet",
       {{"package.json", "{}"},
        {"bin/cli.js", "require('../dist/node/cli.js')"},
        {"src/node/cli.ts", ""}},
       {"bin/cli.js -> src/node/cli.ts"}},
  });
}

TEST(EcmascriptResolver, FollowsBarrelsOneHop) {
  const World barrel = {
      {"a.ts", "import { One, renamed, Two, Own, ns, Deep } from './barrel'; One; One; Two"},
      {"barrel.ts",
       "export { One, original as renamed } from './one'; export * from './two'; export class Own "
       "{}\n"
       "import * as ns from './ns'; export { ns }; export * from './inner'; export * from "
       "'./other'"},
      {"one.ts", ""},
      {"two.ts", "export class Two {}\nexport default class Hidden {}"},
      {"ns.ts", ""},
      {"inner.ts", "export * from './deep'"},
      {"deep.ts", "export const Deep = 1"},
      {"other.ts", "export const Unused = 1"},
  };
  auto edges = weighted_edges_of(barrel);
  std::erase_if(edges, [](const std::string& edge) { return !edge.starts_with("a.ts"); });
  EXPECT_THAT(edges, ElementsAre("a.ts -> barrel.ts *4", "a.ts -> ns.ts *1", "a.ts -> one.ts *4",
                                 "a.ts -> two.ts *2"));
  check({{"of the older kind",
          {{"a.js", "const { b, c } = require('./barrel')"},
           {"barrel.js", "const b = require('./b'); module.exports = { b, c: require('./c') }"},
           {"b.js", ""},
           {"c.js", ""}},
          {"a.js -> barrel.js", "a.js -> b.js", "a.js -> c.js", "barrel.js -> b.js",
           "barrel.js -> c.js"}}});
}

}  // namespace
}  // namespace kestrix::index
