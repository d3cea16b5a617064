#include <algorithm>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "kestrix/formats/json_text.h"
#include "kestrix/formats/nesting.h"
#include "kestrix/formats/scalar_readers.h"

namespace kestrix::index {
namespace {

using Parser = nlohmann::json;

// Tells how far the library has read, which its events do not.
class Input {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  Input(const char* at, const char** furthest) : at_(at), furthest_(furthest) {}
  reference operator*() const { return *at_; }
  Input& operator++() {
    *furthest_ = std::max(*furthest_, ++at_);
    return *this;
  }
  Input operator++(int) {
    const Input before = *this;
    ++*this;
    return before;
  }
  friend bool operator!=(const Input& a, const Input& b) { return a.at_ != b.at_; }

 private:
  const char* at_;
  const char** furthest_;
};

class Events : public nlohmann::json_sax<Parser> {
 public:
  Events(const char* begin, const char* const& read, Nesting& nesting)
      : counted_(begin), read_(read), nesting_(nesting) {}

  bool null() override { return scalar({}); }
  bool boolean(bool value) override { return scalar(value ? "true" : "false"); }
  bool number_integer(std::int64_t value) override { return number(std::to_string(value)); }
  bool number_unsigned(std::uint64_t value) override { return number(std::to_string(value)); }
  bool number_float(double /*value*/, const std::string& written) override {
    return number(written);
  }
  bool string(std::string& value) override { return scalar(value); }
  bool binary(Parser::binary_t& /*value*/) override { return false; }

  bool start_object(std::size_t /*elements*/) override { return nesting_.open_map(); }
  bool start_array(std::size_t /*elements*/) override { return nesting_.open_list(); }
  bool key(std::string& name) override { return nesting_.key(name), true; }
  bool end_object() override { return nesting_.close(), true; }
  bool end_array() override { return nesting_.close(), true; }

  bool parse_error(std::size_t /*at*/, const std::string& /*last*/,
                   const Parser::exception& /*error*/) override {
    return false;
  }

 private:
  bool scalar(std::string_view value) {
    nesting_.scalar(value, line_at(read_));
    return true;
  }

  // The library looks at one byte behind a number.
  bool number(std::string_view written) {
    nesting_.scalar(written, line_at(read_ - 1));
    return true;
  }

  std::size_t line_at(const char* place) {
    if (place > counted_) {
      line_ += static_cast<std::size_t>(std::count(counted_, place, '\n'));
      counted_ = place;
    }
    return line_;
  }

  const char* counted_;  // up to here
  std::size_t line_ = 1;
  const char* const& read_;
  Nesting& nesting_;
};

}  // namespace

void read_json_scalars(std::string_view text, const ScalarVisitor& visit) {
  Nesting nesting(visit);
  const std::string plain = plain_json(text, std::numeric_limits<std::size_t>::max());
  const char* const begin = plain.data();
  const char* const end = begin + plain.size();
  const char* read = begin;
  Events events(begin, read, nesting);
  Parser::sax_parse(Input(begin, &read), Input(end, &read), &events);
}

}  // namespace kestrix::index
