#include "capi/answers/opened.h"

#include <utility>

#include "capi/answers/warnings.h"
#include "kestrix/host/queries/revision.h"

namespace kestrix {
namespace {

index::IndexOptions index_options(const RepositoryOptions& asked, const Conduct& conduct,
                                  const Steering& steering) {
  index::IndexOptions options;
  options.root = asked.repository;
  options.file = asked.index;
  if (!steering.takes_all()) {
    options.takes = [&steering](std::string_view path) { return steering.takes(path); };
    options.choice = steering.choice();
  }
  options.threads = asked.threads;
  options.stop = conduct.stop;
  options.progress = conduct.progress;
  return options;
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

std::unique_ptr<Steering> steering_of(const RepositoryOptions& options) {
  Settings settings = read_settings(options.repository);
  for (const PathWish& wish : options.wishes) settings.paths.push_back(wish);
  return std::make_unique<Steering>(std::move(settings));
}

std::vector<index::LeftOut> left_out_of(const RepositoryOptions& options, const Conduct& conduct) {
  const auto steering = steering_of(options);
  return index::find_left_out(index_options(options, conduct, *steering));
}

Opened open_repository(const RepositoryOptions& options, const Conduct& conduct) {
  auto steering = steering_of(options);
  auto refreshed = index::refresh_and_open(index_options(options, conduct, *steering));
  return {std::filesystem::canonical(options.repository), std::move(refreshed.index),
          std::move(refreshed.result), std::move(steering)};
}

}  // namespace kestrix
