#include "kestrix/index/refresh/note_taking.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <vector>

#include "kestrix/documents/document_reader.h"
#include "kestrix/formats/scalars.h"
#include "kestrix/languages/language.h"
#include "kestrix/roles/licence.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostAttributes = std::size_t{64} << 10U;

// What is larger, or has longer keys, is data.
constexpr std::size_t kMostSettings = std::size_t{64} << 10U;
constexpr std::size_t kMostDirectives = std::size_t{256} << 10U;
constexpr std::size_t kMostKeys = 200;
constexpr std::size_t kLongestKey = 100;

// Templates of environments are known by their names ("env.sample", "app.env.dist"), too.
std::optional<Format> settings_format(std::string_view path) {
  if (const auto format = format_of(path)) return format;
  const std::string_view name = base_name(path);
  const bool environment = name.starts_with("env.") || name.starts_with("env-") ||
                           name.find(".env.") != std::string_view::npos;
  const bool code = language_of(path) != nullptr;
  return environment && !code ? std::optional(Format::kEnv) : std::nullopt;
}

// What settings files are made from, without the ending that says so.
std::string_view without_template_ending(std::string_view path) {
  constexpr std::array<std::string_view, 9> kEndings{
      ".default", ".dist", ".erb", ".j2", ".jinja", ".sample", ".template", ".tmpl", ".tt"};
  for (const std::string_view ending : kEndings) {
    if (path.ends_with(ending)) return path.substr(0, path.size() - ending.size());
  }
  return {};
}

// The names of lines that set one: "PAGE_SIZE = 10", also where it is only shown:
// "# config.page_size = 10".
std::vector<std::string> assigned_in(std::string_view text) {
  std::set<std::string_view> names;
  const auto part = [](char c) { return ascii::is_word(c) || c == '.'; };
  for (std::size_t at = 0; at < text.size() && names.size() < kMostKeys;) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string_view line = ascii::trim(text.substr(at, end - at));
    at = end + 1;
    if (line.starts_with('#')) line = ascii::trim(line.substr(1));
    const auto behind = std::ranges::find_if_not(line, part);
    const std::string_view name = line.substr(0, static_cast<std::size_t>(behind - line.begin()));
    const std::string_view rest = ascii::trim(line.substr(name.size()));
    const bool set = rest.starts_with('=') && !rest.starts_with("==");
    if (set && !name.empty() && name.size() <= kLongestKey && ascii::is_alpha(name.front())) {
      names.insert(name);
    }
  }
  return {names.begin(), names.end()};
}

std::vector<std::string> keys_of(Format format, std::string_view text) {
  std::vector<std::string> keys;
  std::string key;
  for_each_scalar(format, text, [&](const Scalar& scalar) {
    if (keys.size() >= kMostKeys) return;
    key.clear();
    for (const std::string& part : scalar.path) {
      if (part.size() > kLongestKey || key.size() > kLongestKey) return;
      if (!key.empty()) key += '.';
      key += part;
    }
    if (!key.empty() && key.size() <= kLongestKey) keys.push_back(key);
  });
  std::ranges::sort(keys);
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  return keys;
}

// The first words of lines: "port 6379".
std::vector<std::string> directives_of(std::string_view text) {
  std::set<std::string_view> words;
  for (std::size_t at = 0; at < text.size() && words.size() < kMostKeys;) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = text.substr(at, end - at);
    at = end + 1;
    const std::size_t word = line.find_first_of(" \t=");
    if (word == std::string_view::npos || word == 0 || word > kLongestKey) continue;
    if (ascii::is_alpha(line.front())) words.insert(line.substr(0, word));
  }
  return {words.begin(), words.end()};
}

// A line that is cut would say something else.
std::string_view whole_lines(std::string_view text) {
  if (text.size() <= kMostAttributes) return text;
  return text.substr(0, text.rfind('\n', kMostAttributes) + 1);
}

}  // namespace

FileNotes take_notes(std::string_view path, std::string_view text, bool is_document) {
  FileNotes notes;
  if (base_name(path) == ".gitattributes") {
    notes.attributes = whole_lines(text);
  } else if (is_licence_path(path)) {
    notes.holders = copyright_holders(text);
    notes.content = quick_hash(text);
  } else if (is_document) {
    notes.document = read_document(path, text);
    notes.content = quick_hash(text);
  } else {
    const auto format = text.size() > kMostSettings ? std::nullopt : settings_format(path);
    if (format && *format != Format::kXml) notes.keys = keys_of(*format, text);
    if (!format && path.ends_with(".conf") && text.size() <= kMostDirectives) {
      notes.keys = directives_of(text);
    }
    const std::string_view made = without_template_ending(path);
    if (!format && text.size() <= kMostSettings && language_of(made) != nullptr) {
      notes.keys = assigned_in(text);
    }
    notes.documents = documents_named_in(text);
  }
  return notes;
}

}  // namespace kestrix::index
