#include "kestrix/text/decoding.h"

#include <utf8.h>

#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

namespace kestrix {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";
constexpr char32_t kReplacement = 0xFFFD;

bool has_utf16_mark(std::string_view text) {
  return text.starts_with(kUtf16LittleMark) || text.starts_with(kUtf16BigMark);
}

std::size_t ascii_run(std::string_view text) {
  std::size_t i = 0;
  for (std::uint64_t word = 0; i + sizeof word <= text.size(); i += sizeof word) {
    std::memcpy(&word, text.data() + i, sizeof word);
    if ((word & 0x8080808080808080U) != 0) break;
  }
  while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
  return i;
}

std::size_t valid_length(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at < end) {
    at += ascii_run({at, static_cast<std::size_t>(end - at)});
    if (at < end && utf8::internal::validate_next(at, end) != utf8::internal::UTF8_OK) break;
  }
  return static_cast<std::size_t>(at - text.data());
}

// The bytes at the start of `text`, which is ill-formed there, that one U+FFFD stands for: as many
// as could begin a well-formed sequence, else one.
std::size_t ill_formed_length(std::string_view text) {
  for (const std::size_t length : {3U, 2U}) {
    if (text.size() < length || !utf8::internal::is_trail(text[1])) continue;
    std::string sequence(text.substr(0, length));
    while (sequence.size() < 4) {
      sequence += '\x80';
      if (utf8::is_valid(sequence)) return length;
    }
  }
  return 1;
}

// Cuts valid UTF-8 behind its first `max_chars` characters.
void cut(std::string& text, std::size_t max_chars) {
  if (text.size() <= max_chars) return;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t chars = 0; at < end && chars < max_chars; ++chars) utf8::unchecked::next(at);
  text.resize(static_cast<std::size_t>(at - text.data()));
}

std::string repaired(std::string_view text, std::size_t good) {
  std::string out;
  out.reserve(text.size());
  for (;; good = valid_length(text)) {
    out.append(text.substr(0, good));
    text.remove_prefix(good);
    if (text.empty()) return out;
    utf8::unchecked::append(kReplacement, std::back_inserter(out));
    text.remove_prefix(ill_formed_length(text));
  }
}

// Bytes that can hold no character beyond the first `max_chars` are left out at once.
std::string decode_utf8(std::string bytes, std::size_t max_chars) {
  constexpr std::size_t kLongestSequence = 4;
  if (bytes.starts_with(kUtf8Mark)) bytes.erase(0, kUtf8Mark.size());
  if (bytes.size() / kLongestSequence > max_chars) bytes.resize(max_chars * kLongestSequence);
  if (const std::size_t good = valid_length(bytes); good < bytes.size()) {
    bytes = repaired(bytes, good);
  }
  cut(bytes, max_chars);
  return bytes;
}

// Every surrogate without its other half is replaced, and half a unit at the end.
std::u16string units_of(std::string_view bytes, bool big) {
  std::u16string units;
  units.reserve(bytes.size() / 2 + 1);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    units += static_cast<char16_t>(big ? first << 8U | second : second << 8U | first);
  }
  for (std::size_t i = 0; i < units.size(); ++i) {
    const bool lead = utf8::internal::is_lead_surrogate(units[i]);
    if (lead && i + 1 < units.size() && utf8::internal::is_trail_surrogate(units[i + 1])) {
      ++i;
    } else if (utf8::internal::is_surrogate(units[i])) {
      units[i] = static_cast<char16_t>(kReplacement);
    }
  }
  if (bytes.size() % 2 != 0) units += static_cast<char16_t>(kReplacement);
  return units;
}

std::string decode_utf16(std::string_view bytes, std::size_t max_chars) {
  constexpr std::size_t kLongestPair = 4;
  const bool big = bytes.starts_with(kUtf16BigMark);
  bytes.remove_prefix(kUtf16BigMark.size());
  if (bytes.size() / kLongestPair > max_chars) bytes = bytes.substr(0, max_chars * kLongestPair);
  std::string text = utf8::utf16to8(units_of(bytes, big));
  cut(text, max_chars);
  return text;
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
