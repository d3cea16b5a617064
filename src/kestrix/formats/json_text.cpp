#include "kestrix/formats/json_text.h"

#include <algorithm>
#include <vector>

#include "kestrix/formats/limits.h"

namespace kestrix::index {
namespace {

// Drops the commas that stand before a closing bracket, comments between them left out.
class CommaDropper {
 public:
  CommaDropper(std::string_view text, std::size_t most_keys) : text_(text), most_keys_(most_keys) {
    kept_.reserve(text.size());
  }

  /// Nothing, which is no JSON, when the text holds more than is read.
  std::string run() {
    while (at_ < text_.size() && !crowded_) {
      if (text_[at_] == '"') {
        copy_string();
      } else if (!skip_comment()) {
        copy_byte(text_[at_++]);
      }
    }
    return crowded_ ? std::string() : std::move(kept_);
  }

 private:
  void copy_string() {
    const std::size_t start = at_++;
    while (at_ < text_.size() && text_[at_] != '"') at_ += text_[at_] == '\\' ? 2 : 1;
    at_ = std::min(at_ + 1, text_.size());
    kept_ += text_.substr(start, at_ - start);
    comma_ = std::string::npos;
  }

  bool skip_comment() {
    const std::string_view rest = text_.substr(at_);
    std::size_t end = std::string_view::npos;
    if (rest.starts_with("//")) {
      end = rest.find('\n');
    } else if (rest.starts_with("/*")) {
      end = rest.find("*/", 2);
      if (end != std::string_view::npos) end += 2;
    } else {
      return false;
    }
    const std::string_view comment = rest.substr(0, end);
    kept_.append(static_cast<std::size_t>(std::ranges::count(comment, '\n')), '\n');
    at_ += comment.size();
    return true;
  }

  void copy_byte(char c) {
    if ((c == ']' || c == '}') && comma_ != std::string::npos) kept_[comma_] = ' ';
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') comma_ = std::string::npos;
    if (c == ',') comma_ = kept_.size();
    kept_ += c;
    count(c);
  }

  void count(char c) {
    const bool opens = c == '{' || c == '[';
    if (opens) open_.push_back({c == '{'});
    if ((opens || c == ',') && ++values_ > kMostValues) crowded_ = true;
    if (open_.size() > kDeepest) crowded_ = true;
    if (open_.empty()) return;
    if (c == '}' || c == ']') {
      open_.pop_back();
    } else if (c == ',' && open_.back().is_object && ++open_.back().commas >= most_keys_) {
      crowded_ = true;
    }
  }

  struct Bracket {
    bool is_object;
    std::size_t commas = 0;
  };

  std::string_view text_;
  std::size_t most_keys_;
  std::string kept_;
  std::size_t at_ = 0;
  std::size_t comma_ = std::string::npos;  // of the last comma, when only space came after it
  std::vector<Bracket> open_;
  std::size_t values_ = 0;
  bool crowded_ = false;
};

}  // namespace

std::string plain_json(std::string_view text, std::size_t most_keys) {
  return CommaDropper(text, most_keys).run();
}

}  // namespace kestrix::index
