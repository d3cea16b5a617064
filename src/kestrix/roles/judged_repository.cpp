#include "kestrix/roles/judged_repository.h"

#include <algorithm>
#include <iterator>

#include "kestrix/text/paths.h"

namespace kestrix {

JudgedRepository::Range JudgedRepository::below(std::string_view folder) const {
  if (folder.empty()) return {0, static_cast<Place>(files.size())};
  const auto place_of = [&](char end) {
    const auto found =
        std::ranges::lower_bound(files, std::string(folder) + end, {}, &JudgedFile::path);
    return static_cast<Place>(std::distance(files.begin(), found));
  };
  return {place_of('/'), place_of('0')};  // "0" follows "/" in the order of bytes
}

JudgedRepository::Place JudgedRepository::count_code(Range range) const {
  const auto first = files.begin() + range.first;
  return static_cast<Place>(
      std::count_if(first, first + range.size(), [](const auto& file) { return file.is_code(); }));
}

}  // namespace kestrix
