#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrix::index {

/// The longest name, path or string that is kept as a mention.
inline constexpr std::size_t kLongestMention = 200;

/// A path of names ("a.b::C", "a->b", "A\B") with "." between its parts; none when the text is
/// anything else than names and what joins them. Generic arguments end it.
std::optional<std::string> name_path(std::string_view text);

/// A word in a text that is no more than tokens, with what may follow it.
struct Token {
  std::string_view path{};  ///< "a::b" where the word starts a path; "" where it belongs to
                            ///< something else: a member, a later part of a path, a key
  char next = '\0';
  bool typed = false;  ///< behind a name and ":"
};
Token token_at(std::string_view text, std::size_t start);

bool starts_in_lower_case(std::string_view name);
bool starts_in_upper_case(std::string_view name);  ///< behind what joins names

/// The text without what stands in angle brackets: "a.B<C>.d" as "a.B.d". None without such, or
/// where more than types stands in them.
std::optional<std::string> without_type_arguments(std::string_view text);

/// A member that is called, as "name" of "object.name" or "object.name<Type>".
struct CalledMember {
  std::string_view object{};
  std::string_view name{};  ///< "" when the text ends in no member's name
};
CalledMember called_member(std::string_view callee);

/// What a string literal says: without its prefix and quotes. Empty when it is not closed.
std::string_view literal_content(std::string_view literal);

/// Whether a whole string may name something: a path, a dotted or qualified name, a type, a key of
/// several words. Prose, single lower-case words and what holds white space may not.
bool may_name_something(std::string_view content);

}  // namespace kestrix::index
