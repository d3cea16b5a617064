#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/pages.h"

namespace kestrix {

/// Where a file stands on a page, or what it lacks.
struct WhyAnswer {
  std::string page;
  std::string path;
  std::string list;                  ///< "files" or "further"; "" when it is on neither
  std::string entry_points;          ///< flows: the class, the first whose list holds the file
  std::size_t rank = 0;              ///< 1-based within the list
  std::vector<Reason> reasons;       ///< strongest first
  std::vector<Pick> above;           ///< what stands before it in its list, or all of `files`
  std::vector<std::string> missing;  ///< when it is on neither list; the first decides
};

/// Why a file is on a page, or why not. Throws `Error`, which names the path, when the repository
/// has no such file.
WhyAnswer why(const WikiGenerator& generator, const Page& page, std::string_view path);

}  // namespace kestrix
