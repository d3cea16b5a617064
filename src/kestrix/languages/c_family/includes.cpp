#include "kestrix/languages/c_family/includes.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "kestrix/languages/c_family/resolver.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view skip_blanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

std::string_view take_word(std::string_view& text) {
  text = skip_blanks(text);
  std::size_t size = 0;
  while (size < text.size() && ascii::is_word(text[size])) ++size;
  const std::string_view word = text.substr(0, size);
  text = skip_blanks(text.substr(size));
  return word;
}

std::optional<ImportFact> include_of(std::string_view name) {
  if (name.empty() || (name.front() != '"' && name.front() != '<')) return {};
  const bool quoted = name.front() == '"';
  const std::size_t end = name.find(quoted ? '"' : '>', 1);
  if (end == std::string_view::npos || end == 1) return {};
  return ImportFact{
      .module = std::string(name.substr(1, end - 1)),
      .form = static_cast<std::uint16_t>(quoted ? IncludeForm::kQuoted : IncludeForm::kAngled)};
}

// Macros of the file that hold the name of a header.
using Headers = std::unordered_map<std::string_view, std::string_view, SeededHash>;

// The include on a line whose "#" is taken off.
std::optional<ImportFact> include_in(std::string_view line, Headers& headers) {
  const std::string_view directive = take_word(line);
  if (directive == "define") {
    const std::string_view macro = take_word(line);
    if (include_of(line)) headers[macro] = line;
  }
  if (directive != "include" && directive != "include_next" && directive != "import") return {};
  if (auto include = include_of(line)) return include;
  const auto header = headers.find(take_word(line));
  return header == headers.end() ? std::nullopt : include_of(header->second);
}

bool in_comment_or_text(const SourceTree& tree, std::size_t at) {
  const auto byte = static_cast<std::uint32_t>(at);
  const TSNode node = ts_node_descendant_for_byte_range(tree.root(), byte, byte + 1);
  const std::string_view type = type_of(node);
  return type == "comment" || type == "raw_string_content" || type == "raw_string_literal";
}

}  // namespace

std::vector<ImportFact> includes_of(const SourceTree& tree) {
  std::vector<ImportFact> found;
  const std::string_view text = tree.text();
  Headers headers;
  std::uint32_t line = 1;
  for (std::size_t at = 0; at < text.size(); ++line) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::size_t mark = std::min(text.find_first_not_of(kBlanks, at), text.size());
    if (mark < end && text[mark] == '#') {
      auto include = include_in(text.substr(mark + 1, end - mark - 1), headers);
      if (include && !in_comment_or_text(tree, mark)) {
        include->line = line;
        found.push_back(std::move(*include));
      }
    }
    at = end + 1;
  }
  return found;
}

}  // namespace kestrix::index
