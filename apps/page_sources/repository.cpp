#include "apps/page_sources/repository.h"

#include <fmt/format.h>

#include <system_error>
#include <utility>

#include "apps/page_sources/escape.h"
#include "apps/page_sources/warnings.h"
#include "kestrix/host/native_logger.h"
#include "kestrix/host/queries/revision.h"

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

About Opened::about() const {
  About about;
  about.repository = root.native();
  about.left_out = index->statistics().skipped;
  about.warnings = warnings_of(root, about.left_out);
  auto revision = revision_of(root, *index);
  about.revision = std::move(revision.commit);
  about.clean = revision.clean;
  return about;
}

std::unique_ptr<Steering> steering_of(const CommonOptions& common) {
  Settings settings = read_settings(common.repository);
  for (const PathWish& wish : common.wishes) settings.paths.push_back(wish);
  return std::make_unique<Steering>(std::move(settings));
}

index::IndexOptions Opener::options_of(const CommonOptions& common,
                                       const Steering& steering) const {
  index::IndexOptions options;
  options.root = common.repository;
  options.file = common.index;
  if (!steering.takes_all()) {
    options.takes = [&steering](std::string_view path) { return steering.takes(path); };
    options.choice = steering.choice();
  }
  options.threads = common.threads;
  options.stop = &stop_;
  return options;
}

std::vector<index::LeftOut> Opener::left_out(const CommonOptions& common) const {
  const auto steering = steering_of(common);
  return index::find_left_out(options_of(common, *steering));
}

Opened Opener::open(const CommonOptions& common) const {
  set_log_quiet(common.quiet);
  auto steering = steering_of(common);
  ProgressLine progress(console_, common.progress && !common.quiet);
  index::IndexOptions options = options_of(common, *steering);
  options.progress = [&progress](std::size_t done, std::size_t total) {
    progress.update("indexing", done, total);
  };
  auto refreshed = index::refresh_and_open(options);
  Opened opened{fs::canonical(common.repository), std::move(refreshed.index),
                std::move(refreshed.result), std::move(steering)};
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
