#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "apps/page_sources/arguments.h"
#include "apps/page_sources/console.h"
#include "capi/answers/opened.h"
#include "kestrix/utils/stop.h"

namespace kestrix::program {

/// Opens repositories for the subcommands, and tells what their users should know.
class Opener {
 public:
  Opener(Console& console, const StopFlag& stop) : console_(console), stop_(stop) {}

  /// Refreshes the index. Throws `Error`, which names the path.
  Opened open(const CommonOptions& common) const;

  /// Names what the index leaves out. Throws as `open` does.
  std::vector<index::LeftOut> left_out(const CommonOptions& common) const;

  /// A line for the user, unless they asked for quiet.
  void tell(const CommonOptions& common, std::string_view line) const;

 private:
  void tell_top(const CommonOptions& common, const std::filesystem::path& root) const;

  Console& console_;
  const StopFlag& stop_;
};

}  // namespace kestrix::program
