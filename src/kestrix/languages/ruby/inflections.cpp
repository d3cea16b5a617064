#include "kestrix/languages/ruby/inflections.h"

#include <array>
#include <utility>

#include "kestrix/text/ascii.h"

namespace kestrix::index::ruby {
namespace {

using Pair = std::pair<std::string_view, std::string_view>;

constexpr char upper(char c) { return ascii::is_lower(c) ? static_cast<char>(c - 32) : c; }

constexpr std::array kIrregular = std::to_array<Pair>({
    {"people", "person"},
    {"children", "child"},
    {"statuses", "status"},
    {"aliases", "alias"},
    {"indices", "index"},
    {"matrices", "matrix"},
    {"vertices", "vertex"},
    {"media", "medium"},
    {"criteria", "criterion"},
    {"mice", "mouse"},
    {"men", "man"},
    {"women", "woman"},
});

// Ends of plurals with the ends of what they may be plurals of; the first that fits counts.
struct Ending {
  std::string_view plural;
  std::array<std::string_view, 2> singulars;
};
constexpr std::array kEndings = std::to_array<Ending>({
    {"ies", {"y", "ie"}},
    {"sses", {"ss", "ss"}},
    {"shes", {"sh", "sh"}},
    {"ches", {"ch", "che"}},
    {"xes", {"x", "xe"}},
    {"zes", {"z", "ze"}},
    {"ses", {"s", "se"}},
    {"oes", {"o", "oe"}},
    {"ves", {"ve", "f"}},
    {"ss", {"ss", "ss"}},
    {"us", {"us", "us"}},
    {"is", {"is", "is"}},
    {"s", {"", ""}},
});

// Whether `word` ends with the word or words `end`.
bool ends_with_word(std::string_view word, std::string_view end) {
  return word.ends_with(end) &&
         (word.size() == end.size() || !ascii::is_lower(word[word.size() - end.size() - 1]));
}

std::string exchanged(std::string_view word, std::string_view end, std::string_view other) {
  return std::string(word.substr(0, word.size() - end.size())).append(other);
}

}  // namespace

std::string class_name(std::string_view path) {
  std::string name;
  bool starts = true;
  for (const char c : path) {
    if (c == '/') {
      name += "::";
      starts = true;
    } else if (c == '_') {
      starts = true;
    } else {
      name += starts ? upper(c) : c;
      starts = false;
    }
  }
  return name;
}

std::vector<std::string> singulars(std::string_view plural) {
  for (const auto& [many, one] : kIrregular) {
    if (ends_with_word(plural, many)) return {exchanged(plural, many, one)};
  }
  for (const auto& [end, ones] : kEndings) {
    if (!plural.ends_with(end)) continue;
    std::vector<std::string> found{exchanged(plural, end, ones[0])};
    if (ones[1] != ones[0]) found.push_back(exchanged(plural, end, ones[1]));
    return found;
  }
  return {std::string(plural)};
}

std::string plural(std::string_view singular) {
  for (const auto& [many, one] : kIrregular) {
    if (ends_with_word(singular, one)) return exchanged(singular, one, many);
  }
  if (singular.ends_with('y') && singular.size() > 1 &&
      std::string_view("aeiou").find(singular[singular.size() - 2]) == std::string_view::npos) {
    return exchanged(singular, "y", "ies");
  }
  for (const std::string_view end : {"s", "x", "z", "ch", "sh"}) {
    if (singular.ends_with(end)) return std::string(singular) + "es";
  }
  return std::string(singular) + "s";
}

}  // namespace kestrix::index::ruby
