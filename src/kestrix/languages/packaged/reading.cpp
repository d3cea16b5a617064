#include "kestrix/languages/packaged/reading.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

#include "kestrix/languages/symbols.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index::packaged {
namespace {

constexpr std::array<std::string_view, 6> kNoHead = {"annotation",    "attribute_list",
                                                     "block_comment", "comment",
                                                     "line_comment",  "marker_annotation"};

bool is_head(TSNode node) { return std::ranges::find(kNoHead, type_of(node)) == kNoHead.end(); }

// Moves to the first child from which on the declaration's head is written.
void to_head(TreeCursor& cursor) {
  if (!cursor.to_first_child()) return;
  while (true) {
    if (type_of(cursor.node()) == "modifiers" && cursor.to_first_child()) continue;
    if (is_head(cursor.node())) return;
    while (!cursor.to_next_sibling()) {
      if (!cursor.to_parent()) return;
    }
  }
}

bool is_constant_like(std::string_view name) {
  return name.find('_') != std::string_view::npos && is_upper_case(name);
}

// Walks over the chains of words that are joined by dots.
class Chains {
 public:
  explicit Chains(const SourceTree& tree)
      : text_(tree.text()), scanner_(text_, tree.lexis()), more_(scanner_.next(word_)) {}

  struct Chain {
    std::string_view before;  // the word before it, but for "static"
    std::string_view first;
    std::string_view name;  // up to the first part that looks like a type
    std::size_t parts = 0;  // of the name
    bool type = false;      // whether there is one
  };

  bool next(Chain& chain) {
    if (!more_) return false;
    chain = {last_, word_.text, {}, 0, false};
    const std::size_t start = word_.offset;
    std::size_t end = 0;
    do {
      end = word_.offset + word_.text.size();
      if (!chain.type) {
        chain.name = text_.substr(start, end - start);
        ++chain.parts;
        chain.type = is_type_like(word_.text);
      }
      if (word_.text != "static") last_ = word_.text;  // "import static" is an import
      more_ = scanner_.next(word_);
    } while (more_ && word_.member && word_.offset == end + 1);
    return true;
  }

 private:
  std::string_view text_;
  WordScanner scanner_;
  Word word_;
  std::string_view last_;
  bool more_ = false;
};

bool is_package_letter(char c) {
  return ascii::is_lower(c) || ascii::is_digit(c) || c == '_' || c == '.';
}

// The words of code that seem to start a type's name with its package.
// Cheap: it looks at dots only, and takes what comments say for code.
std::set<std::string_view> package_roots(const SourceTree& tree) {
  std::set<std::string_view> roots;
  const std::string_view text = tree.text();
  std::size_t done = 0;
  for (std::size_t dot = text.find('.'); dot != text.npos; dot = text.find('.', dot + 1)) {
    const char next = dot + 1 < text.size() ? text[dot + 1] : ' ';
    if (next < 'A' || next > 'Z') continue;
    std::size_t start = dot;
    while (start > done && is_package_letter(text[start - 1])) --start;
    done = dot;
    const std::string_view package = text.substr(start, dot - start);
    const std::string_view first = package.substr(0, package.find('.'));
    if (first.empty() || first == "this") continue;
    if (tree.uses(first) > 0) roots.insert(first);
  }
  return roots;
}

class LineCounter {
 public:
  explicit LineCounter(std::string_view text) : at_(text.data()) {}
  std::uint32_t line_of(std::string_view part) {
    line_ += static_cast<std::uint32_t>(std::count(at_, part.data(), '\n'));
    at_ = part.data();
    return line_;
  }

 private:
  const char* at_;
  std::uint32_t line_ = 1;
};

}  // namespace

bool is_type_like(std::string_view name) {
  if (name.empty()) return false;
  const auto first = static_cast<unsigned char>(name.front());
  return first >= 0x80 || (first >= 'A' && first <= 'Z');
}

std::string dotted(const SourceTree& tree, TSNode name) {
  std::string text = head_of(tree, ts_node_start_byte(name), ts_node_end_byte(name));
  std::erase_if(text, [](char c) { return c == ' ' || c == '`'; });
  return text;
}

bool has_modifier(const SourceTree& tree, TSNode declaration, std::string_view modifier) {
  TreeCursor cursor(declaration);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) == "modifiers") {
      TreeCursor inner(cursor.node());
      for (bool any = inner.to_first_child(); any; any = inner.to_next_sibling()) {
        if (tree.text(inner.node()) == modifier) return true;
      }
    } else if (type_of(cursor.node()) == "modifier" && tree.text(cursor.node()) == modifier) {
      return true;
    } else if (!cursor.field().empty()) {
      return false;
    }
  }
  return false;
}

SymbolFact symbol(const SourceTree& tree, SymbolKind kind, TSNode declaration, TSNode name,
                  std::uint32_t end) {
  TreeCursor head(declaration);
  to_head(head);
  std::string signature = head_of(tree, ts_node_start_byte(head.node()), end);
  while (signature.ends_with(';')) signature.pop_back();
  return {kind, std::string(tree.text(name)), std::move(signature), SourceTree::line(head.node())};
}

void OwnNames::add_head(const SourceTree& tree, std::uint32_t start, std::uint32_t end) {
  WordScanner scanner(tree.text(start, end), tree.lexis());
  for (Word word; scanner.next(word);) {
    if (!word.member && is_type_like(word.text)) ++heads_[word.text];
  }
}

std::vector<NameUse> OwnNames::foreign_uses(const SourceTree& tree, Constants constants) const {
  std::vector<NameUse> uses;
  for (const auto& [word, count] : tree.words().entries()) {
    if (!is_type_like(word) || names_.contains(word)) continue;
    if (constants == Constants::kIgnore && is_constant_like(word)) continue;
    const auto head = heads_.find(word);
    if (!nested_.contains(word)) {
      uses.push_back({std::string(word), count});
    } else if (head != heads_.end()) {
      uses.push_back({std::string(word), head->second});
    }
  }
  return uses;
}

void add_qualified_names(const SourceTree& tree, std::span<const std::string_view> statements,
                         std::uint16_t form, FileFacts& facts) {
  const std::string_view own = std::string_view(facts.package).substr(0, facts.package.find('.'));
  const std::set<std::string_view> roots = package_roots(tree);
  if (roots.empty() && (own.empty() || tree.uses(own) == 0)) return;
  std::map<std::string_view, ImportFact> found;
  LineCounter lines(tree.text());
  Chains chains(tree);
  for (Chains::Chain chain; chains.next(chain);) {
    const bool known = chain.type ? chain.parts > 1 && roots.contains(chain.first)
                                  : chain.parts > 2 && chain.first == own;
    if (!known || std::ranges::find(statements, chain.before) != statements.end()) continue;
    ImportFact& fact = found.try_emplace(chain.name).first->second;
    if (fact.uses++ > 0) continue;
    fact = {.module = std::string(chain.name),
            .form = form,
            .uses = 1,
            .line = lines.line_of(chain.name)};
  }
  for (auto& [name, fact] : found) facts.imports.push_back(std::move(fact));
}

void add_calls(const SourceTree& tree, const OwnNames& own_names, const CallWords& words,
               FileFacts& facts) {
  std::map<std::string_view, std::uint32_t> calls;
  std::unordered_set<std::string_view, SeededHash> own(words.keywords.begin(),
                                                       words.keywords.end());
  WordScanner scanner(tree.text(), tree.lexis());
  std::string_view before;
  for (Word word; scanner.next(word); before = word.text) {
    if (word.member || is_type_like(word.text)) continue;
    if (before == words.declares) own.insert(word.text);
    const std::string_view after = tree.text().substr(word.offset + word.text.size());
    if (words.is_called(after)) ++calls[word.text];
  }
  for (const auto& [name, count] : calls) {
    if (own_names.contains(name) || own.contains(name)) continue;
    facts.uses.push_back({std::string(name), count});
  }
}

void sort_declared(FileFacts& facts) { sort_distinct(facts.declares); }

}  // namespace kestrix::index::packaged
