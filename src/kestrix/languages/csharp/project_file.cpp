#include "kestrix/languages/csharp/project_file.h"

#include <algorithm>
#include <array>

#include "kestrix/formats/xml.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostItems = 2000;
constexpr std::array<std::string_view, 5> kKinds = {"Compile", "PackageReference",
                                                    "ProjectReference", "Reference", "Using"};

// One item for each entry of a list: "a;b".
void add_items(const XmlElement& element, ProjectFile& file) {
  std::string_view list = element.value("Include");
  while (!list.empty() && file.items.size() < kMostItems) {
    const std::size_t end = std::min(list.find(';'), list.size());
    const std::string_view include = ascii::trim(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
    if (include.empty()) continue;
    file.items.push_back({.kind = std::string(element.name),
                          .include = std::string(include),
                          .alias = std::string(element.value("Alias")),
                          .is_static = ascii::equals(element.value("Static"), "true")});
  }
}

}  // namespace

ProjectFile read_project_file(std::string_view text) {
  ProjectFile file;
  for_each_element(text, [&](const XmlElement& element) {
    file.imports |= element.name == "Import";
    if (std::ranges::find(kKinds, element.name) != kKinds.end()) add_items(element, file);
  });
  return file;
}

}  // namespace kestrix::index
