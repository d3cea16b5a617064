#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index {

/// An item of a project file that says what the project is built with.
struct DotnetItem {
  std::string kind;     ///< "Using", "ProjectReference", "PackageReference", "Reference", "Compile"
  std::string include;  ///< one entry of its list
  std::string alias;    ///< of a "Using"; "" for none
  bool is_static = false;
};

struct ProjectFile {
  std::vector<DotnetItem> items;  ///< in their order, 2000 at most
  bool imports = false;           ///< whether it takes in another project file by name
};

/// Reads a .csproj or .props file. Conditions are not evaluated: an item counts whatever it is on.
ProjectFile read_project_file(std::string_view text);

}  // namespace kestrix::index
