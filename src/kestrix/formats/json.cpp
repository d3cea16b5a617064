#include "kestrix/formats/json.h"

namespace kestrix::index {
namespace {

// A look for a key goes through all of its object's, and a parsed value takes many times the bytes
// of its text. No project file comes near.
constexpr std::size_t kMostKeys = 4096;
constexpr std::size_t kMostValues = std::size_t{1} << 20;
constexpr std::size_t kDeepest = 200;

// Drops the commas that stand before a closing bracket, comments between them left out.
class CommaDropper {
 public:
  explicit CommaDropper(std::string_view text) : text_(text) { kept_.reserve(text.size()); }

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
    at_ = end == std::string_view::npos ? text_.size() : at_ + end;
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
    } else if (c == ',' && open_.back().is_object && ++open_.back().commas >= kMostKeys) {
      crowded_ = true;
    }
  }

  struct Bracket {
    bool is_object;
    std::size_t commas = 0;
  };

  std::string_view text_;
  std::string kept_;
  std::size_t at_ = 0;
  std::size_t comma_ = std::string::npos;  // of the last comma, when only space came after it
  std::vector<Bracket> open_;
  std::size_t values_ = 0;
  bool crowded_ = false;
};

}  // namespace

Json parse_json(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  Json value = Json::parse(CommaDropper(text).run(), nullptr, /*allow_exceptions=*/false);
  return value.is_discarded() ? Json() : value;
}

Json parse_config(std::string_view text) {
  Json value = parse_json(text);
  return value.is_object() ? value : Json::object();
}

const Json* find_key(const Json& object, std::string_view key) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(std::string(key));
  return found == object.end() ? nullptr : &*found;
}

std::string text_at(const Json& object, const char* key) {
  const Json* value = find_key(object, key);
  return value != nullptr && value->is_string() ? value->get<std::string>() : std::string();
}

std::vector<std::string> texts_of(const Json& value) {
  std::vector<std::string> texts;
  if (value.is_string()) texts.push_back(value.get<std::string>());
  if (!value.is_array()) return texts;
  for (const Json& element : value) {
    if (element.is_string()) texts.push_back(element.get<std::string>());
  }
  return texts;
}

}  // namespace kestrix::index
