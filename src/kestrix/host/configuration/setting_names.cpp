#include "kestrix/host/configuration/setting_names.h"

#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

// The words of the last part, in lower case, joined by "_"; "" when there is only one.
std::string words_of(std::string_view name) {
  name = name.substr(name.find_last_of(".:/") + 1);
  std::string words;
  bool several = false;
  char before = '_';
  for (const char c : name) {
    const bool part = ascii::is_alpha(c) || ascii::is_digit(c);
    const bool starts = ascii::is_upper(c) && (ascii::is_lower(before) || ascii::is_digit(before));
    if ((!part || starts) && !words.empty() && words.back() != '_') words += '_';
    if (part) {
      several = several || (!words.empty() && words.back() == '_');
      words += ascii::lower(c);
    }
    before = c;
  }
  return several ? words : std::string();
}

}  // namespace

void SettingNames::add(std::string_view name) {
  if (std::string words = words_of(name); !words.empty()) names_.insert(std::move(words));
}

SettingNames::Share SettingNames::share_of(std::span<const std::string> names) const {
  Share share;
  std::set<std::string, std::less<>> seen;
  for (const std::string& name : names) {
    std::string words = words_of(name);
    if (words.empty() || !seen.insert(words).second) continue;
    ++share.names;
    if (names_.contains(words)) share.settings.push_back(name);
  }
  return share;
}

}  // namespace kestrix
