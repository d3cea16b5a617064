#include "kestrix/languages/ecmascript/components.h"

#include <algorithm>
#include <array>

#include "kestrix/text/ascii.h"

namespace kestrix::index::ecmascript {
namespace {

constexpr auto kScripts = std::to_array<std::string_view>(
    {"ts", "tsx", "js", "jsx", "typescript", "javascript", "module", "text/javascript"});

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_name(char c) {
  return ascii::is_upper(c) || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.';
}

class Masking {
 public:
  explicit Masking(std::string_view text) : text_(text), masked_(text) {
    std::ranges::replace_if(
        masked_, [](char c) { return c != '\n' && c != '\r'; }, ' ');
  }

  std::string take() {
    while (at_ < text_.size()) {
      at_ = text_.find('<', at_);
      if (at_ == std::string_view::npos) break;
      visit_tag();
    }
    return std::move(masked_);
  }

 private:
  void visit_tag() {
    const std::size_t open = at_++;
    const std::string_view rest = text_.substr(at_);
    if (rest.starts_with("!--")) {
      skip_behind("-->");
    } else if (is_element(rest, "script")) {
      visit_script(open);
    } else if (is_element(rest, "style")) {
      skip_tag();
      skip_behind("</style");
    } else if (!rest.empty() && ascii::is_upper(rest.front())) {
      const auto end = std::ranges::find_if_not(rest, is_name);
      if (end == rest.end() || (!is_blank(*end) && *end != '/' && *end != '>')) return;
      masked_[open] = ';';
      show(at_, at_ + static_cast<std::size_t>(end - rest.begin()));
    }
  }

  static bool is_element(std::string_view rest, std::string_view name) {
    return rest.starts_with(name) && rest.size() > name.size() &&
           (is_blank(rest[name.size()]) || rest[name.size()] == '>');
  }

  void visit_script(std::size_t open) {
    const std::string_view head = skip_tag();
    if (head.ends_with('/')) return;
    const std::size_t start = at_;
    skip_behind("</script");
    if (!is_script(head)) return;
    const std::size_t end = at_ == text_.size() ? at_ : at_ - std::string_view("</script").size();
    masked_[open] = ';';
    show(start, end);
    if (end < text_.size()) masked_[end] = ';';
  }

  // What the tag says; its quoted values may hold anything.
  std::string_view skip_tag() {
    const std::size_t start = at_;
    char quote = '\0';
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (quote != '\0') {
        if (c == quote) quote = '\0';
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == '>') {
        break;
      }
    }
    const std::string_view head = text_.substr(start, at_ - start);
    at_ = std::min(at_ + 1, text_.size());
    return head;
  }

  static bool is_script(std::string_view head) {
    for (const std::string_view name : {" lang=", " type="}) {
      const std::size_t found = head.find(name);
      if (found == std::string_view::npos) continue;
      std::string_view value = head.substr(found + name.size());
      if (value.starts_with('"') || value.starts_with('\'')) value.remove_prefix(1);
      value = value.substr(0, value.find_first_of("\"' \t\r\n"));
      if (std::ranges::find(kScripts, value) == kScripts.end()) return false;
    }
    return true;
  }

  void skip_behind(std::string_view end) {
    const std::size_t found = text_.find(end, at_);
    at_ = found == std::string_view::npos ? text_.size() : found + end.size();
  }

  void show(std::size_t start, std::size_t end) {
    masked_.replace(start, end - start, text_.substr(start, end - start));
  }

  std::string_view text_;
  std::string masked_;
  std::size_t at_ = 0;
};

}  // namespace

std::optional<std::string> mask_markup(std::string_view text) { return Masking(text).take(); }

}  // namespace kestrix::index::ecmascript
