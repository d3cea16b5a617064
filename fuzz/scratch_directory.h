#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "fuzz/require.h"

namespace kestrix::test {

/// A directory of its own for one process, gone when it ends well.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "kestrix-fuzz-XXXXXX").native();
    require(::mkdtemp(name.data()) != nullptr, "there is a temporary directory");
    path_ = std::filesystem::canonical(name);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::filesystem::path operator/(std::string_view relative) const { return path_ / relative; }

  std::filesystem::path write(std::string_view relative, std::string_view text) const {
    std::filesystem::create_directories((path_ / relative).parent_path());
    std::ofstream(path_ / relative, std::ios::binary) << text;
    return path_ / relative;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace kestrix::test
