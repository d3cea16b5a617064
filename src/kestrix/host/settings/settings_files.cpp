#include <fmt/format.h>

#include <cstdlib>

#include "kestrix/files/file_reading.h"
#include "kestrix/files/root_directory.h"
#include "kestrix/host/settings/settings.h"
#include "kestrix/utils/error.h"

namespace kestrix {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostBytes = std::size_t{64} << 10U;

fs::path absolute_from_environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): nothing here sets it
  const fs::path path = value == nullptr ? "" : value;
  return path.is_absolute() ? path : fs::path();
}

fs::path users_file() {
  fs::path folder = absolute_from_environment("XDG_CONFIG_HOME");
  if (folder.empty()) {
    const fs::path home = absolute_from_environment("HOME");
    if (home.empty()) return {};
    folder = home / ".config";
  }
  return folder / "page-sources" / "config.toml";
}

void add_file(Settings& settings, const index::FileBytes& content, const std::string& name) {
  if (content.status == index::ReadStatus::kVanished) return;
  if (content.status == index::ReadStatus::kUnreadable) {
    throw Error(fmt::format("{}: cannot be read", name));
  }
  if (content.truncated) throw Error(fmt::format("{}: larger than 64 KiB", name));
  add_settings(settings, content.bytes, name);
  settings.files.push_back(name);
}

}  // namespace

Settings read_settings(const fs::path& root) {
  Settings settings;
  if (const fs::path file = users_file(); !file.empty()) {
    std::error_code ignored;
    if (fs::exists(file, ignored)) {
      add_file(settings, index::read_users_file(file, kMostBytes), file.native());
    }
  }
  const index::RootDirectory directory(root);
  add_file(settings, index::read_file(directory, kSettingsFile, kMostBytes), kSettingsFile);
  return settings;
}

}  // namespace kestrix
