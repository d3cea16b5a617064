#include "kestrix/languages/symbols.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::pair<std::string_view, SymbolKind>, 5> kDeclarations = {{
    {"class", SymbolKind::kClass},
    {"interface", SymbolKind::kInterface},
    {"constant", SymbolKind::kConstant},
    {"variable", SymbolKind::kVariable},
    {"binding", SymbolKind::kVariable},
}};

void cut(std::string& text, std::size_t size) {
  if (text.size() <= size) return;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) --size;
  text.resize(size);
}

// Writes code on one line as it comes.
class OneLine {
 public:
  bool full() const { return text_.size() > kLongestSignature; }
  void space(bool broken) {
    gap_ = true;
    broken_ |= broken;
  }
  void put(std::string_view piece) {
    if (gap_ && !text_.empty()) close_gap(piece.front());
    gap_ = broken_ = false;
    for (const char c : piece) text_ += ascii::is_space(c) ? ' ' : c;
  }
  std::string take() {
    while (!text_.empty() &&
           std::string_view(" {:=").find(text_.back()) != std::string_view::npos) {
      text_.pop_back();
    }
    cut(text_, kLongestSignature);
    return std::move(text_);
  }

 private:
  void close_gap(char next) {
    const bool closes = next == ')' || next == ']';
    if (broken_ && closes && text_.back() == ',') text_.pop_back();
    if (!broken_ || (!closes && text_.back() != '(' && text_.back() != '[')) text_ += ' ';
  }

  std::string text_;
  bool gap_ = false;
  bool broken_ = false;
};

// Decorators may stand inside of what they decorate.
TSNode first_of(TSNode declaration) {
  TreeCursor cursor(declaration);
  bool more = cursor.to_first_child();
  while (more && cursor.field() == "decorator") more = cursor.to_next_sibling();
  return more ? cursor.node() : declaration;
}

}  // namespace

bool is_upper_case(std::string_view name) {
  constexpr auto lower = ascii::is_lower;
  const auto upper = [](char c) { return c >= 'A' && c <= 'Z'; };
  return std::ranges::any_of(name, upper) && std::ranges::none_of(name, lower);
}

std::string head_of(const SourceTree& tree, std::uint32_t start, std::uint32_t end) {
  const std::string_view text = tree.text(start, end);
  OneLine line;
  std::size_t at = 0;
  while (at < text.size() && !line.full()) {
    if (const std::size_t comment = comment_length(text.substr(at), tree.lexis()); comment > 0) {
      line.space(true);
      at += comment;
    } else if (ascii::is_space(text[at])) {
      line.space(text[at] == '\n');
      ++at;
    } else {
      const std::size_t literal =
          std::max<std::size_t>(string_length(text.substr(at), tree.lexis()), 1);
      line.put(text.substr(at, literal));
      at += literal;
    }
  }
  return line.take();
}

std::optional<SymbolFact> symbol_of(const SourceTree& tree, const Match& match) {
  const auto name = match.node("name");
  if (!name) return std::nullopt;
  for (const auto& [capture, kind] : kDeclarations) {
    const auto declaration = match.node(capture);
    if (!declaration) continue;
    const auto body = match.node("body");
    const TSNode head = match.node("head").value_or(first_of(*declaration));
    const std::uint32_t end = body ? ts_node_start_byte(*body) : ts_node_end_byte(*declaration);
    SymbolFact symbol{kind, std::string(tree.text(*name)),
                      head_of(tree, ts_node_start_byte(head), end), SourceTree::line(head)};
    if (capture == "binding" && is_upper_case(symbol.name)) symbol.kind = SymbolKind::kConstant;
    return symbol;
  }
  return std::nullopt;
}

void add_symbol(const SourceTree& tree, const Match& match, FileFacts& facts) {
  auto symbol = symbol_of(tree, match);
  if (!symbol) return;
  if (!facts.symbols.empty()) {
    const SymbolFact& last = facts.symbols.back();
    if (last.line == symbol->line && last.name == symbol->name) return;
  }
  facts.symbols.push_back(std::move(*symbol));
}

}  // namespace kestrix::index
