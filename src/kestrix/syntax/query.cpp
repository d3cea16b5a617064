#include "kestrix/syntax/query.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "kestrix/text/ascii.h"
#include "kestrix/text/sorting.h"
#include "kestrix/utils/error.h"

namespace kestrix::index {
namespace {

CaptureRole role_of(std::string_view capture) {
  if (capture == "enter") return CaptureRole::kEnter;
  if (capture == "members") return CaptureRole::kMembers;
  return CaptureRole::kFact;
}

bool is_word(char c) { return ascii::is_word(c) || c == '-' || c == '.' || c == '?' || c == '!'; }

}  // namespace

// Recursive on the nesting of the query files, which come with this program.
class QueryParser {
 public:
  QueryParser(const TSLanguage* language, std::string_view text, std::string_view name,
              std::span<const std::string_view> captures, Query& query)
      : language_(language), text_(text), name_(name), captures_(captures), query_(query) {}

  void run() {
    while (skip_space(), at_ < text_.size()) query_.patterns_.push_back(pattern());
  }

 private:
  using Kind = PatternNode::Kind;

  [[noreturn]] void fail(std::string_view why) const {
    const auto line = 1 + std::ranges::count(text_.substr(0, at_), '\n');
    throw Error(fmt::format("the query of {} is wrong in line {}: {}", name_, line, why));
  }

  void skip_space() {
    while (at_ < text_.size()) {
      if (text_[at_] == ';') {
        at_ = std::min(text_.find('\n', at_), text_.size());
      } else if (std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos) {
        ++at_;
      } else {
        return;
      }
    }
  }

  bool sees(std::string_view token) {
    skip_space();
    return text_.substr(at_).starts_with(token);
  }
  bool take(std::string_view token) {
    if (!sees(token)) return false;
    at_ += token.size();
    return true;
  }
  void expect(std::string_view token) {
    if (!take(token)) fail(fmt::format("\"{}\" is missing", token));
  }

  std::string_view word() {
    skip_space();
    const std::size_t start = at_;
    while (at_ < text_.size() && is_word(text_[at_])) ++at_;
    if (start == at_) fail("a name is missing");
    return text_.substr(start, at_ - start);
  }

  std::string literal() {
    expect("\"");
    std::string value;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (text_[at_] == '\\') ++at_;
      value += text_.substr(at_++, 1);
    }
    expect("\"");
    return value;
  }

  // A node, or a group of a node and its predicates.
  Query::Pattern pattern() {
    Query::Pattern pattern;
    const std::size_t start = at_;
    const bool group = take("(") && (sees("(") || sees("[")) && !sees("(#");
    if (!group) at_ = start;
    pattern.root = node();
    if (!group) return pattern;
    while (take("(#")) predicate(pattern);
    expect(")");
    return pattern;
  }

  void predicate(Query::Pattern& pattern) {
    const std::string_view verb = word();
    if (verb == "set!") {
      if (word() != "anywhere") fail("only \"anywhere\" can be set");
      pattern.anywhere = true;
    } else if (verb == "eq?" || verb == "any-of?") {
      expect("@");
      Query::Predicate& predicate = pattern.predicates.emplace_back();
      predicate.capture = capture(word());
      while (sees("\"")) predicate.texts.push_back(literal());
    } else {
      fail("no such predicate");
    }
    expect(")");
  }

  bool is_known(std::string_view capture) const {
    return role_of(capture) != CaptureRole::kFact || capture == "import" ||
           capture.starts_with('_') || std::ranges::find(captures_, capture) != captures_.end();
  }

  std::uint32_t capture(std::string_view name) {
    const auto found = std::ranges::find(query_.names_, name);
    if (found == query_.names_.end()) {
      if (!is_known(name)) fail(fmt::format("nobody looks at \"@{}\"", name));
      query_.names_.emplace_back(name);
      query_.roles_.push_back(role_of(name));
      return static_cast<std::uint32_t>(query_.names_.size() - 1);
    }
    return static_cast<std::uint32_t>(found - query_.names_.begin());
  }

  // NOLINTBEGIN(misc-no-recursion): as deep as the query files, which are our own

  PatternNode node() {
    PatternNode node;
    if (take("[")) {
      node.kind = Kind::kOneOf;
      while (!sees("]")) node.children.push_back(this->node());
      expect("]");
    } else if (sees("\"")) {
      node.kind = Kind::kSymbol;
      node.symbol = symbol(literal(), false);
    } else if (take("(")) {
      named(node);
    } else if (take("_")) {
      node.kind = Kind::kAny;
    } else {
      fail("a node is missing");
    }
    node.optional = take("?");
    if (sees("*") || sees("+")) fail("a node can not be repeated");
    while (take("@")) node.names.push_back(capture(word()));
    return node;
  }

  void named(PatternNode& node) {
    const std::string_view type = word();
    node.kind = type == "_" ? Kind::kAnyNamed : Kind::kSymbol;
    if (type != "_") node.symbol = symbol(std::string(type), true);
    bool anchored = false;
    while (!take(")")) {
      if (take(".")) {
        anchored = true;
        if (sees(")") && !node.children.empty()) node.children.back().last = true;
      } else if (take("!")) {
        node.absent.push_back(field(word()));
      } else {
        node.children.push_back(child());
        node.children.back().first = std::exchange(anchored, false);
      }
    }
  }

  PatternNode child() {
    skip_space();
    TSFieldId id = 0;
    const std::size_t start = at_;
    if (is_word(text_[at_]) && text_[at_] != '_') {
      id = field(word());
      expect(":");
    } else {
      at_ = start;
    }
    PatternNode child = node();
    child.field = id;
    return child;
  }

  // NOLINTEND(misc-no-recursion)

  TSSymbol symbol(const std::string& type, bool named) const {
    const TSSymbol symbol = ts_language_symbol_for_name(
        language_, type.data(), static_cast<std::uint32_t>(type.size()), named);
    if (symbol == 0) fail(fmt::format("the grammar has no \"{}\"", type));
    return symbol;
  }

  TSFieldId field(std::string_view name) const {
    const TSFieldId field = ts_language_field_id_for_name(language_, name.data(),
                                                          static_cast<std::uint32_t>(name.size()));
    if (field == 0) fail(fmt::format("the grammar has no field \"{}\"", name));
    return field;
  }

  const TSLanguage* language_;
  std::string_view text_;
  std::string_view name_;
  std::span<const std::string_view> captures_;
  Query& query_;
  std::size_t at_ = 0;
};

namespace {

// NOLINTNEXTLINE(misc-no-recursion): see above
void collect_roots(const PatternNode& node, std::vector<TSSymbol>& symbols) {
  if (node.kind == PatternNode::Kind::kSymbol) symbols.push_back(node.symbol);
  if (node.kind != PatternNode::Kind::kOneOf) return;
  for (const PatternNode& alternative : node.children) collect_roots(alternative, symbols);
}

}  // namespace

Query::Query(const TSLanguage* language, std::string_view text, std::string_view name,
             std::span<const std::string_view> captures) {
  QueryParser(language, text, name, captures, *this).run();
  by_symbol_.resize(ts_language_symbol_count(language));
  for (std::size_t at = 0; at < patterns_.size(); ++at) {
    std::vector<TSSymbol> roots;
    collect_roots(patterns_[at].root, roots);
    if (roots.empty()) throw Error(fmt::format("a pattern of {} has no type at its root", name));
    sort_distinct(roots);
    for (const TSSymbol root : roots) by_symbol_[root].push_back(static_cast<std::uint16_t>(at));
  }
}

}  // namespace kestrix::index
