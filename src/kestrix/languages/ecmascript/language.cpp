#include "kestrix/languages/language.h"

#include <kestrix/grammars.h>

#include <array>
#include <span>
#include <string_view>

#include "kestrix/languages/ecmascript/code.h"
#include "kestrix/languages/ecmascript/components.h"
#include "kestrix/languages/ecmascript/conventions.h"
#include "kestrix/languages/ecmascript/dialect.h"
#include "kestrix/languages/ecmascript/javascript.scm.h"
#include "kestrix/languages/ecmascript/reader.h"
#include "kestrix/languages/ecmascript/resolver.h"
#include "kestrix/languages/ecmascript/typescript.scm.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 4> kJavaScript = {".js", ".jsx", ".mjs", ".cjs"};
constexpr std::array<std::string_view, 3> kTypeScript = {".ts", ".mts", ".cts"};
constexpr std::array<std::string_view, 1> kTsx = {".tsx"};
// What the reader asks the matches of the query for.
constexpr std::array<std::string_view, 17> kCaptures = {
    "assigned", "bind", "binding",   "body", "class",  "constant", "default", "dynamic", "export",
    "exports",  "glob", "interface", "key",  "member", "module",   "name",    "spread"};

}  // namespace

namespace ecmascript {

// The dialects differ in their grammar; what is read of them and how it is resolved is one.
Language dialect(std::string_view name, std::span<const std::string_view> files,
                 const TSLanguage* (*grammar)(), std::string_view query, const CodeRules& code) {
  return {.name = name,
          .files = files,
          .grammar = grammar,
          .query = query,
          .captures = kCaptures,
          .lexis = &lexis,
          .keywords = keywords(),
          .read = read,
          .resolver = make_ecmascript_resolver,
          .code = &code,
          .conventions = &kConventions};
}

Language component_dialect(std::string_view name, std::span<const std::string_view> files) {
  Language language =
      dialect(name, files, tree_sitter_typescript, typescript_query, component_code);
  language.mask = mask_markup;
  language.masks_words = true;
  return language;
}

}  // namespace ecmascript

const Language& javascript_language() {
  static const Language language = ecmascript::dialect(
      "javascript", kJavaScript, tree_sitter_javascript, javascript_query, javascript_code);
  return language;
}

const Language& typescript_language() {
  static const Language language = ecmascript::dialect(
      "typescript", kTypeScript, tree_sitter_typescript, typescript_query, typescript_code);
  return language;
}

const Language& tsx_language() {
  static const Language language =
      ecmascript::dialect("tsx", kTsx, tree_sitter_tsx, typescript_query, tsx_code);
  return language;
}

}  // namespace kestrix::index
