#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/languages/resolver.h"

namespace kestrix::index {

/// A target as a Package.swift declares it.
struct SwiftTarget {
  std::string name;
  std::string path;  ///< as written, in the package's folder; "": where the name says
  bool test = false;
};

/// The targets of a package, in the order of the manifest; what is computed is not seen.
std::vector<SwiftTarget> read_manifest(std::string_view text);

/// Which module each file belongs to, by the packages of the repository.
class SwiftModules {
 public:
  explicit SwiftModules(const FileTable& files);

  /// The module of a file; "" for what is in no target.
  std::string_view module_of(std::string_view path) const;
  bool contains(std::string_view module) const { return names_.contains(module); }

 private:
  void add_package(const FileTable& files, FileId manifest);

  std::map<std::string, std::string, std::less<>> folders_;  // to the module of their files
  std::set<std::string, std::less<>> names_;
};

}  // namespace kestrix::index
