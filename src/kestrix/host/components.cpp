#include "kestrix/host/components.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "kestrix/text/ascii.h"
#include "kestrix/workers/project_units.h"

namespace kestrix {
namespace {

struct LayerName {
  std::string_view folder;
  std::string_view layer;
};

constexpr auto kLayers = std::to_array<LayerName>({
    {"domain", "domain"},
    {"application", "application"},
    {"usecases", "application"},
    {"use_cases", "application"},
    {"use-cases", "application"},
    {"infrastructure", "infrastructure"},
    {"infra", "infrastructure"},
    {"interface", "interface"},
    {"interfaces", "interface"},
    {"adapters", "interface"},
    {"presentation", "interface"},
});

std::string_view layer_of(std::string_view folder) {
  const auto name = folder.substr(folder.rfind('.') + 1);
  const auto found = std::ranges::find_if(
      kLayers, [name](const LayerName& l) { return ascii::equals(name, l.folder); });
  return found == kLayers.end() ? std::string_view() : found->layer;
}

}  // namespace

std::vector<Component> components_of(std::span<const std::string> paths) {
  std::map<std::string, std::string_view> layers;
  for (const std::string_view path : paths) {
    for (std::size_t begin = 0, slash = 0;
         (slash = path.find('/', begin)) != std::string_view::npos; begin = slash + 1) {
      const auto layer = layer_of(path.substr(begin, slash - begin));
      if (!layer.empty()) layers.try_emplace(pattern_of_root(path.substr(0, slash)), layer);
    }
  }
  std::vector<Component> components;
  components.reserve(layers.size());
  for (const auto& [pattern, layer] : layers) {
    components.push_back({std::string(layer), pattern});
  }
  return components;
}

}  // namespace kestrix
