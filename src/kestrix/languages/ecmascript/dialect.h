#pragma once

#include "kestrix/languages/language.h"

namespace kestrix::index::ecmascript {

/// What the dialects have in common: how they are read and resolved.
Language dialect(std::string_view name, std::span<const std::string_view> files,
                 const TSLanguage* (*grammar)(), std::string_view query, const CodeRules& code);

/// A language whose files hold typed scripts in markup ("<script>…</script>").
Language component_dialect(std::string_view name, std::span<const std::string_view> files);

}  // namespace kestrix::index::ecmascript
