#include "kestrix/walk/third_party.h"

#include <fcntl.h>

#include <algorithm>
#include <array>

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 3> kVendorMarks = {"autoload.php", "composer",
                                                          "modules.txt"};

}  // namespace

bool is_third_party(const RootDirectory& root, std::string_view name, const std::string& path) {
  if (name == "node_modules") return true;
  return name == "vendor" && std::ranges::any_of(kVendorMarks, [&](std::string_view mark) {
           return static_cast<bool>(root.open(path + "/" + std::string(mark), O_PATH));
         });
}

}  // namespace kestrix::index
