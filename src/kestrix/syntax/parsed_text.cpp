#include "kestrix/syntax/parsed_text.h"

#include <algorithm>

#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

// Hands the text to the lexer in pieces and counts what the parse has cost.
class Meter {
 public:
  Meter(std::string_view text, std::uint64_t steps) : text_(text), most_(steps) {}

  TSInput input() { return {this, read, TSInputEncodingUTF8, nullptr}; }
  TSParseOptions options() { return {this, is_over}; }
  bool exhausted() const { return exhausted_; }

 private:
  static constexpr std::size_t kPiece = std::size_t{2} << 10U;
  static constexpr std::size_t kCopied = std::size_t{4} << 10U;
  static constexpr std::size_t kGoneOver = std::size_t{64} << 10U;

  bool take_step(std::size_t at) {
    ++taken_;
    // At an error the parser may go back over all that it has on its stack.
    const std::size_t errors = ParserMemory::errors();
    taken_ += (errors - errors_) * (at / kGoneOver);
    errors_ = errors;
    if (taken_ + ParserMemory::large_bytes() / kCopied > most_) exhausted_ = true;
    return !exhausted_;
  }

  // The text seems to end where the steps do: the step that asks for more comes to an end, too.
  static const char* read(void* self, std::uint32_t at, TSPoint, std::uint32_t* length) {
    auto& meter = *static_cast<Meter*>(self);
    const std::size_t start = std::min<std::size_t>(at, meter.text_.size());
    const bool more = meter.take_step(start);
    *length = more ? static_cast<std::uint32_t>(std::min(meter.text_.size() - start, kPiece)) : 0;
    return meter.text_.data() + start;
  }

  static bool is_over(TSParseState* state) {
    return !static_cast<Meter*>(state->payload)->take_step(state->current_byte_offset);
  }

  std::string_view text_;
  std::uint64_t most_;
  std::uint64_t taken_ = 0;
  std::size_t errors_ = 0;
  bool exhausted_ = false;
};

}  // namespace

ParsedText::ParsedText(const TSLanguage* grammar, std::string_view text, std::uint64_t steps) {
  Meter meter(text, steps);
  const TSTree* tree = nullptr;
  bool fits = false;
  const bool whole = memory_.run([&] {
    TSParser* const parser = ts_parser_new();
    fits = ts_parser_set_language(parser, grammar);
    tree = ts_parser_parse_with_options(parser, nullptr, meter.input(), meter.options());
  });
  if (!fits) throw Error("a grammar does not fit the parser library");
  if (whole && !meter.exhausted()) tree_ = tree;
}

}  // namespace kestrix::index
