#include "capi/answers/escape.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace kestrix {
namespace {

constexpr unsigned char byte_at(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

constexpr bool is_control(unsigned char c) { return c < 0x20 || c == 0x7f; }

struct LeadByte {
  std::size_t length;          // of the sequence that it begins, 0 for none
  unsigned char least_second;  // bounds of the byte that follows it
  unsigned char most_second;
};

// Table 3-7 of the Unicode standard: no overlong form, no surrogate, nothing past U+10FFFF.
constexpr LeadByte lead_byte(unsigned char c) {
  if (c < 0x80) return {1, 0, 0};
  if (c >= 0xc2 && c <= 0xdf) return {2, 0x80, 0xbf};
  if (c == 0xe0) return {3, 0xa0, 0xbf};
  if (c == 0xed) return {3, 0x80, 0x9f};
  if (c >= 0xe1 && c <= 0xef) return {3, 0x80, 0xbf};
  if (c == 0xf0) return {4, 0x90, 0xbf};
  if (c >= 0xf1 && c <= 0xf3) return {4, 0x80, 0xbf};
  if (c == 0xf4) return {4, 0x80, 0x8f};
  return {0, 0, 0};
}

// Length of the valid UTF-8 sequence at the start of `text`, 0 when there is none.
constexpr std::size_t sequence_length(std::string_view text) {
  const LeadByte lead = lead_byte(byte_at(text, 0));
  if (lead.length < 2) return lead.length;
  if (text.size() < lead.length) return 0;
  const unsigned char second = byte_at(text, 1);
  if (second < lead.least_second || second > lead.most_second) return 0;
  for (std::size_t i = 2; i < lead.length; ++i) {
    if ((byte_at(text, i) & 0xc0U) != 0x80) return 0;
  }
  return lead.length;
}

constexpr char32_t code_point(std::string_view sequence) {
  char32_t code = byte_at(sequence, 0) & (0x7fU >> sequence.size());
  for (std::size_t i = 1; i < sequence.size(); ++i) {
    code = (code << 6U) | (byte_at(sequence, i) & 0x3fU);
  }
  return code;
}

struct CodeRange {
  char32_t first;
  char32_t last;
};

// What beyond ASCII steers a terminal or the direction of a text, ends a line, or is not seen at
// all, so that two paths would look alike. The joiners that words and emoji need are let be.
constexpr CodeRange kSteering[] = {
    {0x80, 0x9f},      // C1 controls
    {0xad, 0xad},      // soft hyphen
    {0x61c, 0x61c},    // a mark of direction
    {0x200b, 0x200b},  // a space of no width
    {0x200e, 0x200f},  // marks of direction
    {0x2028, 0x202e},  // separators of lines and paragraphs, embeddings
    {0x2060, 0x206f},  // invisible operators, isolates
    {0xfeff, 0xfeff},  // byte-order mark
    {0xfff9, 0xfffb},  // annotations
    {0xe0000, 0xe0fff},
};

constexpr bool steers(std::string_view sequence) {
  if (sequence.size() < 2) return false;
  const char32_t code = code_point(sequence);
  return std::ranges::any_of(kSteering, [code](const CodeRange& range) {
    return code >= range.first && code <= range.last;
  });
}

// Copies `text`, with `escape` for the ASCII that `is_special` picks, `wide` for characters beyond
// it that steer, and `stray` for the bytes outside valid UTF-8.
template <class IsSpecial, class Escape, class Wide, class Stray>
std::string escaped(std::string_view text, IsSpecial is_special, Escape escape, Wide wide,
                    Stray stray) {
  std::string out;
  out.reserve(text.size() + 2);
  while (!text.empty()) {
    const std::size_t length = sequence_length(text);
    const unsigned char first = byte_at(text, 0);
    if (length == 0) {
      out += stray(first);
    } else if (length == 1 && is_special(first)) {
      out += escape(first);
    } else if (steers(text.substr(0, length))) {
      out += wide(text.substr(0, length));
    } else {
      out += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return out;
}

constexpr std::string_view kShortEscapes = "\aa\bb\tt\nn\vv\ff\rr\"\"\\\\";

std::string octal(unsigned char c) { return fmt::format("\\{:03o}", c); }

std::string octals(std::string_view bytes) {
  std::string out;
  for (const char byte : bytes) out += octal(static_cast<unsigned char>(byte));
  return out;
}

std::string c_escape(unsigned char c) {
  for (std::size_t i = 0; i < kShortEscapes.size(); i += 2) {
    if (byte_at(kShortEscapes, i) == c) return {'\\', kShortEscapes[i + 1]};
  }
  return octal(c);
}

bool needs_c_escape(unsigned char c) { return is_control(c) || c == '"' || c == '\\'; }

std::string json_escape(unsigned char c) {
  if (is_control(c) && c != '\n' && c != '\t') return fmt::format("\\u{:04x}", c);
  return c_escape(c);
}

}  // namespace

std::string json_string(std::string_view text) {
  const auto stray = [](unsigned char c) { return fmt::format("\\udc{:02x}", c); };
  const auto wide = [](std::string_view sequence) {
    const auto code = static_cast<unsigned>(code_point(sequence));
    if (code < 0x10000) return fmt::format("\\u{:04x}", code);
    return fmt::format("\\u{:04x}\\u{:04x}", 0xd7c0U + (code >> 10U), 0xdc00U + (code & 0x3ffU));
  };
  return '"' + escaped(text, needs_c_escape, json_escape, wide, stray) + '"';
}

std::string c_quoted(std::string_view text) {
  const std::string inner = escaped(text, needs_c_escape, c_escape, octals, octal);
  return inner == text ? inner : '"' + inner + '"';
}

std::string dot_string(std::string_view text) {
  const auto is_special = [](unsigned char c) { return c == '"' || c == '\\'; };
  const auto escape = [](unsigned char c) { return std::string{'\\', static_cast<char>(c)}; };
  return '"' + escaped(c_quoted(text), is_special, escape, octals, octal) + '"';
}

std::string one_line(std::string_view text) {
  return escaped(text, is_control, c_escape, octals, octal);
}

}  // namespace kestrix
