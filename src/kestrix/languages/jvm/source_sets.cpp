#include "kestrix/languages/jvm/source_sets.h"

#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

// Tests are of the platform whose code they test.
std::string_view platform_name(std::string_view folder) {
  for (const std::string_view kind : {"Main", "Test"}) {
    if (folder.ends_with(kind)) return folder.substr(0, folder.size() - kind.size());
  }
  return folder;
}

// A folder that may be a source set: the module's folder, its own name, and the next folder in it.
struct Step {
  std::string_view module;
  std::string_view platform;
  std::string_view inner;
};

// Calls `visit(step)` for each folder above a path, the topmost first, until it says true.
template <class Visit>
void for_each_step(std::string_view path, Visit visit) {
  for (std::size_t at = path.find('/'); at != path.npos; at = path.find('/', at + 1)) {
    const std::string_view folder = path.substr(0, at);
    const std::size_t end = path.find('/', at + 1);
    const std::string_view inner =
        end == path.npos ? std::string_view() : path.substr(at + 1, end - at - 1);
    if (visit(Step{folder_of(folder), platform_name(base_name(folder)), inner})) return;
  }
}

}  // namespace

SourceSets::SourceSets(const FileTable& files) {
  const auto for_each_kotlin_step = [&](auto visit) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (files.language(id) == "kotlin") for_each_step(files.path(id), visit);
    }
  };
  for_each_kotlin_step([&](const Step& step) {
    if (step.platform != "common") return false;
    modules_.insert(step.module);
    inner_.insert(step.inner);
    return true;
  });
  for_each_kotlin_step([&](const Step& step) {
    const bool found = modules_.contains(step.module) && inner_.contains(step.inner);
    if (found) platforms_.insert(step.platform);
    return found;
  });
  platforms_.erase("common");
}

// A module for one platform alone names its source set as the others do.
std::string_view SourceSets::platform_of(std::string_view path) const {
  std::string_view platform;
  for_each_step(path, [&](const Step& step) {
    const bool known = platforms_.contains(step.platform) && inner_.contains(step.inner);
    if (known) platform = step.platform;
    return known || step.platform == "common";
  });
  return platform;
}

}  // namespace kestrix::index
