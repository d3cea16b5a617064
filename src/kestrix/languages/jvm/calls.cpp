#include "kestrix/languages/jvm/calls.h"

#include <algorithm>

namespace kestrix::index::jvm {

std::string_view key_of(std::string_view content) {
  const std::size_t open = content.find("${");
  if (open == std::string_view::npos) return content;
  content.remove_prefix(open + 2);
  return content.substr(0, std::min(content.find_first_of(":}"), content.size()));
}

}  // namespace kestrix::index::jvm
