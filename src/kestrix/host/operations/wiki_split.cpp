#include "kestrix/workers/wiki_split.h"

namespace kestrix {

std::string stem(std::string_view path) {
  const auto name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  const bool has_suffix = dot != std::string_view::npos && dot > 0 && dot + 1 < name.size();
  return std::string(has_suffix ? name.substr(0, dot) : name);
}

}  // namespace kestrix
