#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <array>
#include <span>
#include <string_view>

#include "kestrix/languages/ecmascript/code.h"
#include "kestrix/languages/ecmascript/conventions.h"
#include "kestrix/languages/ecmascript/javascript.scm.h"
#include "kestrix/languages/ecmascript/reader.h"
#include "kestrix/languages/ecmascript/resolver.h"
#include "kestrix/languages/ecmascript/typescript.scm.h"

namespace kestrix::index {
namespace {

using Files = std::span<const std::string_view>;

constexpr std::array<std::string_view, 4> kJavaScript = {".js", ".jsx", ".mjs", ".cjs"};
constexpr std::array<std::string_view, 3> kTypeScript = {".ts", ".mts", ".cts"};
constexpr std::array<std::string_view, 1> kTsx = {".tsx"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 16> kCaptures = {
    "assigned", "bind",    "binding",   "body", "class",  "constant", "default", "dynamic",
    "export",   "exports", "interface", "key",  "member", "module",   "name",    "spread"};

// The dialects differ in their grammar; what is read of them and how it is resolved is one.
Language dialect(std::string_view name, Files files, const TSLanguage* (*grammar)(),
                 std::string_view query, const CodeRules& code) {
  return {.name = name,
          .files = files,
          .grammar = grammar,
          .query = query,
          .captures = kCaptures,
          .lexis = &ecmascript::lexis,
          .keywords = ecmascript::keywords(),
          .read = ecmascript::read,
          .resolver = make_ecmascript_resolver,
          .code = &code,
          .conventions = &ecmascript::kConventions};
}

}  // namespace

const Language& javascript_language() {
  static const Language language =
      dialect("javascript", kJavaScript, tree_sitter_javascript, javascript_query, javascript_code);
  return language;
}

const Language& typescript_language() {
  static const Language language =
      dialect("typescript", kTypeScript, tree_sitter_typescript, typescript_query, typescript_code);
  return language;
}

const Language& tsx_language() {
  static const Language language =
      dialect("tsx", kTsx, tree_sitter_tsx, typescript_query, tsx_code);
  return language;
}

}  // namespace kestrix::index
