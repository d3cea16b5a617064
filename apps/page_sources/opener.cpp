#include "apps/page_sources/opener.h"

#include <fmt/format.h>

#include <optional>
#include <system_error>

#include "capi/answers/escape.h"
#include "capi/answers/warnings.h"
#include "kestrix/host/native_logger.h"

namespace kestrix::program {
namespace {

namespace fs = std::filesystem;

// The nearest folder above `root` that git's data lies in; none when `root` is a top itself.
std::optional<fs::path> top_above(const fs::path& root) {
  std::error_code ignored;
  if (fs::exists(root / ".git", ignored)) return std::nullopt;
  for (fs::path folder = root; folder != folder.root_path();) {
    folder = folder.parent_path();
    if (fs::exists(folder / ".git" / "HEAD", ignored) ||
        fs::is_regular_file(folder / ".git", ignored)) {
      return folder;
    }
  }
  return std::nullopt;
}

}  // namespace

std::vector<index::LeftOut> Opener::left_out(const CommonOptions& common) const {
  return left_out_of(common, {&stop_, {}});
}

Opened Opener::open(const CommonOptions& common) const {
  set_log_quiet(common.quiet);
  Opened opened;
  {
    ProgressLine progress(console_, common.progress && !common.quiet);
    opened = open_repository(common, {&stop_, [&progress](std::size_t done, std::size_t total) {
                                        progress.update("indexing", done, total);
                                      }});
  }
  tell_top(common, opened.root);
  for (const auto& warning : warnings_of(opened.root, opened.index->statistics().skipped)) {
    tell(common, warning);
  }
  return opened;
}

void Opener::tell(const CommonOptions& common, std::string_view line) const {
  if (!common.quiet) console_.message(fmt::format("page-sources: {}\n", line));
}

void Opener::tell_top(const CommonOptions& common, const fs::path& root) const {
  const auto top = top_above(root);
  if (!top) return;
  tell(common,
       fmt::format("answering for the folder {} alone; the top of the work tree is {}",
                   c_quoted(root.lexically_relative(*top).native()), c_quoted(top->native())));
}

}  // namespace kestrix::program
