#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrix::index {

/// An element of an XML document. Its views last for the call.
struct XmlElement {
  std::string_view name;  ///< with its prefix, as it is written
  std::size_t line;       ///< from 1
  std::vector<std::pair<std::string_view, std::string_view>> attributes;
  /// The elements directly in it that hold text alone, with that text.
  std::vector<std::pair<std::string_view, std::string_view>> texts;

  /// The value of an attribute or, where there is none, of the text below such an element: what
  /// MSBuild calls metadata is written in either way. "" for neither.
  std::string_view value(std::string_view key) const;
};

/// Calls `visit` for each element of a document in UTF-8, in the order of the text, whatever stands
/// in comments left out. Of a damaged document what stands before the damage is visited; nothing of
/// one that holds more than any project file. Never throws but for what `visit` throws.
void for_each_element(std::string_view text, const std::function<void(const XmlElement&)>& visit);

}  // namespace kestrix::index
