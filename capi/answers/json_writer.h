#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "capi/answers/escape.h"

namespace kestrix {

/// Writes one JSON document, indented by two, as it is told its parts in order.
///
/// The library that the tests read JSON with cannot write strings that are not UTF-8.
class JsonWriter {
 public:
  void begin_object() { begin('{'); }
  void end_object() { end('}'); }
  void begin_array() { begin('['); }
  void end_array() { end(']'); }

  /// Name of the member whose value follows.
  void key(std::string_view name) {
    separate();
    out_ += json_string(name) + ": ";
    after_key_ = true;
  }

  void string(std::string_view text) { raw(json_string(text)); }
  void boolean(bool value) { raw(value ? "true" : "false"); }
  /// A number, or anything else that is JSON already.
  void raw(std::string_view text) {
    separate();
    out_ += text;
  }

  /// The document with its final newline.
  std::string take() && { return std::move(out_) + '\n'; }

 private:
  void begin(char bracket) {
    separate();
    out_ += bracket;
    filled_.push_back(false);
  }

  void end(char bracket) {
    const bool filled = filled_.back();
    filled_.pop_back();
    if (filled) new_line();
    out_ += bracket;
  }

  void separate() {
    if (!after_key_ && !filled_.empty()) {
      if (filled_.back()) out_ += ',';
      filled_.back() = true;
      new_line();
    }
    after_key_ = false;
  }

  void new_line() { out_.append(1, '\n').append(2 * filled_.size(), ' '); }

  std::string out_;
  std::vector<bool> filled_;  // for each open bracket, whether it holds something yet
  bool after_key_ = false;
};

}  // namespace kestrix
