#include "kestrix/languages/rust/macro_items.h"

#include <algorithm>
#include <array>

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 9> kItems = {"const",  "enum",  "fn",   "macro", "static",
                                                    "struct", "trait", "type", "union"};

// Counts braces up to an offset, which only grows.
class Depth {
 public:
  explicit Depth(std::string_view text) : text_(text) {}

  int at(std::size_t offset) {
    for (; at_ < offset; ++at_) {
      if (text_[at_] == '{') ++depth_;
      if (text_[at_] == '}') --depth_;
    }
    return depth_;
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

}  // namespace

MacroItems items_of_macro(std::string_view tokens, const Lexis& lexis) {
  MacroItems items;
  Depth depth(tokens);
  WordScanner scanner(tokens, lexis);
  std::string_view before;
  bool handed_on = false;
  for (Word word; scanner.next(word);) {
    const std::size_t end = word.offset + word.text.size();
    if (before == "mod" && tokens.substr(end, 1) == ";") {
      items.modules.push_back(word.text);
    } else if (word.text == "use") {
      const std::size_t close = std::min(tokens.find(';', end), tokens.size());
      items.uses.push_back({tokens.substr(end, close - end), handed_on});
    } else if (std::ranges::find(kItems, before) != kItems.end() && depth.at(word.offset) == 1) {
      items.declared.push_back(word.text);
    }
    // "pub(crate) use" too.
    handed_on = word.text == "pub" || (handed_on && tokens.substr(end).starts_with(')'));
    before = word.text;
  }
  return items;
}

}  // namespace kestrix::index
