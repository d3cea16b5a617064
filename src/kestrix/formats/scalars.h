#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrix::index {

/// A format of configuration and project files.
enum class Format : std::uint8_t { kJson, kYaml, kToml, kXml, kIni, kProperties, kEnv };

/// The format that a path announces, by its extension or its name (".env.local"); none for others.
std::optional<Format> format_of(std::string_view path);

/// A value of a document that holds no others. Its views last for the call.
struct Scalar {
  /// Where it stands, as in a JSON Pointer: keys, and the decimal places of elements in a list. In
  /// XML the names of the elements around it, then "@name" for an attribute; in INI the section,
  /// when there is one, and the key.
  std::span<const std::string> path;
  std::string_view value;  ///< without quotes; "" for null, numbers as they are written or shortest
  std::size_t line;        ///< of the value, from 1; for a null left out in YAML, of what follows
};

using ScalarVisitor = std::function<void(const Scalar&)>;

/// Calls `visit` for each scalar of a document in UTF-8, in the order of the text; TOML's in the
/// order of its keys.
///
/// Never throws but for what `visit` throws. Of a damaged document what stands before the damage is
/// visited; of one that is nested deeper or holds more than any project file, a part or nothing.
/// YAML's aliases are left out, so a document costs no more than its text.
void for_each_scalar(Format format, std::string_view text, const ScalarVisitor& visit);

}  // namespace kestrix::index
