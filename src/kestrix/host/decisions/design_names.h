#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kestrix {

/// The number or date at the front of an entry's name.
struct EntryName {
  std::string_view word;    ///< "adr" in "adr-007-queues"
  std::string_view digits;  ///< "007", or the whole of "2024-01-31"
  std::string_view title;   ///< "queues"
  std::uint64_t number = 0;
  bool dated = false;

  /// "0007"
  bool padded() const;
  bool long_number() const { return dated || digits.size() >= 3; }
  /// Whether the number has as many digits as `padded` asks for.
  bool of_padded_length() const;
};

/// The entry's number or date in a name without its ending; none when it has none. A word before it
/// must be one that entries have ("adr", "rfc", "proposal" …).
std::optional<EntryName> entry_name(std::string_view name);

/// Whether an entry's word says by itself that it is a decision record ("adr").
bool is_record_word(std::string_view word);

/// "template", "adr-template", "0000-kep-template", "YYYYMMDD-template"; "0012-template-engine" is
/// an entry about templates.
bool is_template(std::string_view name, const std::optional<EntryName>& entry);

/// What the folders of a document are named for.
bool holds_entries(std::string_view folder);    ///< "adr", "rfcs", "proposals" …
bool holds_overviews(std::string_view folder);  ///< "design", "architecture" …
bool holds_templates(std::string_view folder);
bool serves_developers(std::string_view folder);  ///< "dev", "internals" …
bool reports_news(std::string_view folder);       ///< "releases", "changelog", "blog" …

/// Whether any folder of a path passes the test.
bool any_folder(std::string_view directory, bool (*test)(std::string_view folder));

/// DESIGN, ARCHITECTURE, DECISIONS …
bool is_design_name(std::string_view name);
/// A name whose first or last word is one of those: "find_base_commit_design".
bool has_design_word(std::string_view name);
/// The index page of a folder, and the pages that every repository has: README, CHANGELOG …
bool is_standing_page(std::string_view name);
/// The same, and pages of news and instructions by a word of their name: "v2-upgrade".
bool is_common_page(std::string_view name);
/// An index page alone: README, index …
bool is_index_page(std::string_view name);

}  // namespace kestrix
