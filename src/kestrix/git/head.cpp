#include "kestrix/git/head.h"

#include <algorithm>
#include <string_view>

#include "kestrix/files/file_reading.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostLinkBytes = std::size_t{16} << 10U;
constexpr std::size_t kMostPackedBytes = std::size_t{64} << 20U;
constexpr int kMostSteps = 5;  // as git follows symbolic references
constexpr std::string_view kSymbolic = "ref: ";

bool is_id(std::string_view text) {
  const auto is_hexadecimal = [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
  };
  return (text.size() == 40 || text.size() == 64) && std::ranges::all_of(text, is_hexadecimal);
}

std::string line_of(const RootDirectory& directory, std::string_view name) {
  std::string text = whole_text(read_file(directory, name, kMostLinkBytes));
  text.resize(std::min(text.find_last_not_of(" \r\n") + 1, text.size()));
  return text;
}

std::string packed(const RootDirectory& common, std::string_view name) {
  const std::string text = whole_text(read_file(common, "packed-refs", kMostPackedBytes));
  const std::string wanted = ' ' + std::string(name) + '\n';
  for (auto at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) {
    const auto line = at == 0 ? std::string::npos : text.rfind('\n', at - 1);
    const auto begin = line == std::string::npos ? 0 : line + 1;
    if (std::string id = text.substr(begin, at - begin); is_id(id)) return id;
  }
  return {};
}

}  // namespace

std::string head_commit(const RootDirectory& own, const RootDirectory& common) {
  std::string value = line_of(own, "HEAD");
  for (int step = 0; step < kMostSteps && value.starts_with(kSymbolic); ++step) {
    const std::string name = value.substr(kSymbolic.size());
    if (!name.starts_with("refs/")) return {};
    value = line_of(own, name);
    if (value.empty()) value = line_of(common, name);
    if (value.empty()) value = packed(common, name);
  }
  return is_id(value) ? value : std::string();
}

}  // namespace kestrix::index
