#include "kestrix/text/decoding.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

namespace kestrix {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::uint8_t byte_at(std::string_view text, std::size_t i) {
  return static_cast<std::uint8_t>(text[i]);
}

bool has_utf16_mark(std::string_view text) {
  return text.starts_with(kUtf16LittleMark) || text.starts_with(kUtf16BigMark);
}

std::size_t ascii_run(std::string_view text, std::size_t from) {
  std::size_t i = from;
  for (std::uint64_t word = 0; i + sizeof word <= text.size(); i += sizeof word) {
    std::memcpy(&word, text.data() + i, sizeof word);
    if ((word & 0x8080808080808080U) != 0) break;
  }
  while (i < text.size() && byte_at(text, i) < 0x80) ++i;
  return i - from;
}

struct Sequence {
  std::size_t length;  ///< bytes that it takes, 1 at least
  bool valid;
};

struct Lead {
  std::size_t length;        ///< of a whole sequence; 0 for a byte that begins none
  std::uint8_t second_low;   ///< range of the second byte, which excludes surrogates,
  std::uint8_t second_high;  ///< overlong forms and what lies beyond U+10FFFF
};

Lead lead_of(std::uint8_t byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {2, 0x80, 0xBF};
  if (byte == 0xE0) return {3, 0xA0, 0xBF};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {3, 0x80, 0xBF};
  if (byte == 0xF0) return {4, 0x90, 0xBF};
  if (byte >= 0xF1 && byte <= 0xF3) return {4, 0x80, 0xBF};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

// The sequence at a byte beyond ASCII: valid, or the longest prefix of a valid one.
Sequence sequence_at(std::string_view text, std::size_t at) {
  const Lead lead = lead_of(byte_at(text, at));
  if (lead.length == 0) return {1, false};
  std::size_t length = 1;
  while (length < lead.length && at + length < text.size()) {
    const auto byte = byte_at(text, at + length);
    const auto low = length == 1 ? lead.second_low : 0x80;
    const auto high = length == 1 ? lead.second_high : 0xBF;
    if (byte < low || byte > high) break;
    ++length;
  }
  return {length, length == lead.length};
}

struct Prefix {
  std::size_t bytes = 0;
  std::size_t chars = 0;
};

// The longest valid prefix of at most `max_chars` characters.
Prefix valid_prefix(std::string_view text, std::size_t max_chars) {
  Prefix done;
  while (done.bytes < text.size() && done.chars < max_chars) {
    const auto run = std::min(ascii_run(text, done.bytes), max_chars - done.chars);
    done.bytes += run;
    done.chars += run;
    if (done.bytes == text.size() || done.chars == max_chars) break;
    const auto next = sequence_at(text, done.bytes);
    if (!next.valid) break;
    done.bytes += next.length;
    ++done.chars;
  }
  return done;
}

std::string repaired(std::string_view text, std::size_t max_chars) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t left = max_chars; !text.empty() && left > 0;) {
    const auto good = valid_prefix(text, left);
    out.append(text.substr(0, good.bytes));
    text.remove_prefix(good.bytes);
    left -= good.chars;
    if (text.empty() || left == 0) break;
    out.append(kReplacement);
    text.remove_prefix(sequence_at(text, 0).length);
    --left;
  }
  return out;
}

std::string decode_utf8(std::string bytes, std::size_t max_chars) {
  if (bytes.starts_with(kUtf8Mark)) bytes.erase(0, kUtf8Mark.size());
  const auto good = valid_prefix(bytes, max_chars);
  if (good.bytes == bytes.size() || good.chars == max_chars) {
    bytes.resize(good.bytes);
    return bytes;
  }
  return repaired(bytes, max_chars);
}

void append_utf8(std::string& out, std::uint32_t code) {
  const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
  if (code < 0x80) return put(code);
  if (code < 0x800) {
    put(0xC0 | code >> 6U);
  } else {
    if (code < 0x10000) {
      put(0xE0 | code >> 12U);
    } else {
      put(0xF0 | code >> 18U);
      put(0x80 | (code >> 12U & 0x3FU));
    }
    put(0x80 | (code >> 6U & 0x3FU));
  }
  put(0x80 | (code & 0x3FU));
}

class Utf16Reader {
 public:
  explicit Utf16Reader(std::string_view marked)
      : text_(marked.substr(2)), big_(marked.starts_with(kUtf16BigMark)) {}

  bool done() const { return at_ >= text_.size(); }

  std::uint32_t next() {
    if (at_ + 1 >= text_.size()) return at_ = text_.size(), kInvalid;
    const auto high = unit(at_);
    at_ += 2;
    if (high < 0xD800 || high > 0xDFFF) return high;
    if (high > 0xDBFF || at_ + 1 >= text_.size()) return kInvalid;
    const auto low = unit(at_);
    if (low < 0xDC00 || low > 0xDFFF) return kInvalid;
    at_ += 2;
    return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
  }

 private:
  static constexpr std::uint32_t kInvalid = 0xFFFD;

  std::uint32_t unit(std::size_t at) const {
    const std::uint32_t first = byte_at(text_, at);
    const std::uint32_t second = byte_at(text_, at + 1);
    return big_ ? first << 8U | second : second << 8U | first;
  }

  std::string_view text_;
  bool big_;
  std::size_t at_ = 0;
};

std::string decode_utf16(std::string_view bytes, std::size_t max_chars) {
  std::string out;
  out.reserve(bytes.size() / 2);
  Utf16Reader reader(bytes);
  for (std::size_t chars = 0; chars < max_chars && !reader.done(); ++chars) {
    append_utf8(out, reader.next());
  }
  return out;
}

}  // namespace

bool is_binary(std::string_view head) {
  return !has_utf16_mark(head) &&
         head.substr(0, kBinaryWindow).find('\0') != std::string_view::npos;
}

std::string decode_text(std::string bytes, std::size_t max_chars) {
  if (is_binary(bytes)) return {};
  if (has_utf16_mark(bytes)) return decode_utf16(bytes, max_chars);
  return decode_utf8(std::move(bytes), max_chars);
}

}  // namespace kestrix
