#include "kestrix/languages/c_family/conditionals.h"

#include <algorithm>
#include <array>
#include <string>

#include "kestrix/languages/c_family/scanning.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

using Ranges = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

constexpr std::size_t kDeepest = 10'000;  // brackets and conditionals
constexpr std::size_t kLongestHead = 200;

// Words that start a statement.
constexpr std::array<std::string_view, 9> kKeywords = {"case", "default", "do",     "else", "for",
                                                       "if",   "return",  "switch", "while"};

// What the innermost open bracket holds.
enum class Inside : std::uint8_t { kStatements, kFields, kEnumerators, kElements, kExpression };

// Where the code stands between two bytes of it.
struct Place {
  std::size_t depth = 0;
  char last = ';';  // the last byte that is neither blank nor comment
};

struct Branch {
  std::uint32_t start;  // behind the line of its directive
  std::uint32_t end;    // before the next directive
  char last;            // ';' while it is empty
  bool balanced;
  bool dead;  // "#if 0"
};

struct Conditional {
  std::uint32_t start;                      // of the line of "#if"
  std::vector<std::uint32_t> directives{};  // starts of the lines of the others
  std::vector<Branch> branches{};
  Place before{};
  Inside inside = Inside::kStatements;
  std::size_t lowest = 0;  // depth within the branch
  // What the branch that counts left behind: so many brackets as before, and these.
  std::size_t below = 0;
  std::vector<Inside> left_open{};
  char last = ';';

  std::size_t kept() const { return branches.front().dead ? 1 : 0; }
};

class Scan {
 public:
  explicit Scan(std::string_view text) : text_(text) {}

  Ranges run() {
    while (at_ < text_.size()) {
      const std::size_t mark = std::min(text_.find_first_not_of(" \t", at_), text_.size());
      if (mark < text_.size() && text_[mark] == '#') {
        read_directive(mark);
      } else {
        take_macro_line(mark);
        read_code_line();
      }
    }
    std::ranges::sort(ranges_);
    return std::move(ranges_);
  }

 private:
  std::size_t depth() const { return brackets_.size(); }
  Inside inside() const { return brackets_.empty() ? Inside::kStatements : brackets_.back(); }

  // Behind the line and those that a backslash appends to it.
  std::size_t end_of_line(std::size_t at) const {
    for (;;) {
      const std::size_t end = std::min(text_.find('\n', at), text_.size());
      const std::size_t last = end > 0 && end < text_.size() && text_[end - 1] == '\r' ? 2 : 1;
      if (end < text_.size() && end >= last && text_[end - last] == '\\') {
        at = end + 1;
        continue;
      }
      return std::min(end + 1, text_.size());
    }
  }

  // A comment may go on on further lines.
  std::size_t end_of_directive() const {
    const std::size_t end = end_of_line(at_);
    const std::string_view line = text_.substr(at_, end - at_);
    const std::size_t open = line.rfind("/*");
    if (open == std::string_view::npos || line.find("*/", open) != std::string_view::npos ||
        line.substr(0, open).find("//") != std::string_view::npos) {
      return end;
    }
    return end_of_line(std::min(text_.find("*/", end), text_.size()));
  }

  void read_directive(std::size_t mark) {
    const auto line = static_cast<std::uint32_t>(at_);
    std::size_t word = mark + 1;
    while (word < text_.size() && (text_[word] == ' ' || text_[word] == '\t')) ++word;
    const std::size_t end = end_of_directive();
    const std::string_view rest = text_.substr(word, end - word);
    at_ = end;
    if (rest.starts_with("define") && inside() > Inside::kFields) {
      blank(line, end);
    } else if (rest.starts_with("if")) {
      open(line, is_dead(rest));
    } else if (rest.starts_with("el") && !conditionals_.empty()) {
      next_branch(line);
    } else if (rest.starts_with("endif") && !conditionals_.empty()) {
      close(line);
    }
  }

  static bool is_dead(std::string_view directive) {
    if (!directive.starts_with("if ")) return false;
    directive.remove_prefix(3);
    while (directive.starts_with(' ')) directive.remove_prefix(1);
    return directive.starts_with('0') && (directive.size() == 1 || !ascii::is_word(directive[1]));
  }

  void open(std::uint32_t line, bool dead) {
    if (conditionals_.size() >= kDeepest) return;
    Conditional& now = conditionals_.emplace_back();
    now.start = line;
    now.before = {depth(), last_};
    now.inside = inside();
    start_branch(now, dead);
  }

  void start_branch(Conditional& now, bool dead) {
    now.branches.push_back({static_cast<std::uint32_t>(at_), 0, ';', false, dead});
    now.lowest = depth();
    touched_ = false;
  }

  void end_branch(Conditional& now, std::uint32_t line) {
    Branch& branch = now.branches.back();
    branch.end = line;
    branch.balanced = depth() == now.before.depth && now.lowest >= now.before.depth;
    branch.last = touched_ ? last_ : ';';
    if (now.branches.size() != now.kept() + 1) return;
    now.below = std::min(now.lowest, depth());
    now.left_open.assign(brackets_.begin() + static_cast<std::ptrdiff_t>(now.below),
                         brackets_.end());
    now.last = last_;
  }

  void resize(std::size_t depth, Inside fill) { brackets_.resize(depth, fill); }

  // Each branch starts where the first one did.
  void next_branch(std::uint32_t line) {
    Conditional& now = conditionals_.back();
    end_branch(now, line);
    now.directives.push_back(line);
    resize(std::min(now.lowest, depth()), now.inside);
    resize(now.before.depth, now.inside);
    last_ = now.before.last;
    start_branch(now, false);
  }

  void close(std::uint32_t line) {
    Conditional now = std::move(conditionals_.back());
    conditionals_.pop_back();
    end_branch(now, line);
    now.directives.push_back(line);
    resume(now);
    if (!conditionals_.empty()) {
      conditionals_.back().lowest = std::min(conditionals_.back().lowest, depth());
    }
    const bool dead = now.branches.front().dead;
    if (stays(now)) {
      if (dead) blank(now.branches.front().start, now.branches.front().end);
      return;
    }
    blank(now.start, now.branches.front().start);
    for (std::size_t i = 0; i < now.directives.size(); ++i) {
      const bool more = i + 1 < now.branches.size();
      blank(now.directives[i], more ? now.branches[i + 1].start : at_);
    }
    const bool all = keeps_all(now);
    for (std::size_t i = 0; i < now.branches.size(); ++i) {
      if ((all && !now.branches[i].dead) || i == now.kept()) continue;
      blank(now.branches[i].start, now.branches[i].end);
    }
  }

  // Behind a conditional the code stands where the branch that counts has ended.
  void resume(const Conditional& now) {
    if (now.branches.size() > now.kept()) {
      resize(std::min(now.below, depth()), now.inside);
      resize(now.below, now.inside);
      brackets_.insert(brackets_.end(), now.left_open.begin(), now.left_open.end());
      last_ = now.last;
    } else {
      resize(std::min(now.lowest, depth()), now.inside);
      resize(now.before.depth, now.inside);
      last_ = now.before.last;
    }
    touched_ = true;
  }

  static bool ends_statement(char last) { return last == ';' || last == '}' || last == '{'; }

  static bool stays(const Conditional& now) {
    const auto whole = [&](const Branch& branch) {
      const bool ended = ends_statement(branch.last) ||
                         (now.inside == Inside::kEnumerators && branch.last == ',') ||
                         (now.inside <= Inside::kFields && branch.last == ':');
      return branch.dead || (branch.balanced && ended && branch.last != '{');
    };
    if (now.inside == Inside::kElements || now.inside == Inside::kExpression) return false;
    const char before = now.before.last;
    const bool starts = ends_statement(before) || before == ':' ||
                        (now.inside == Inside::kEnumerators && before == ',');
    return starts && std::ranges::all_of(now.branches, whole);
  }

  static bool keeps_all(const Conditional& now) {
    return now.inside == Inside::kElements &&
           std::ranges::all_of(now.branches, [](const Branch& branch) {
             return branch.dead || (branch.balanced && branch.last == ',');
           });
  }

  void blank(std::size_t start, std::size_t end) {
    if (start < end) {
      ranges_.emplace_back(static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end));
    }
  }

  // Up to the end of the line; a comment or text may end on a later one.
  void read_code_line() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '\n') {
        ++at_;
        return;
      }
      if (c == '/' && at_ + 1 < text_.size() && (text_[at_ + 1] == '/' || text_[at_ + 1] == '*')) {
        skip_comment();
        continue;
      }
      if (c == '"' || c == '\'') {
        skip_literal(c);
        note('"');
        continue;
      }
      ++at_;
      if (c == ' ' || c == '\t' || c == '\r' || c == '\\') continue;
      take(c);
    }
  }

  void note(char c) {
    last_ = c;
    touched_ = true;
  }

  void take(char c) {
    if (c == '(' || c == '[') {
      if (depth() < kDeepest) brackets_.push_back(Inside::kExpression);
    } else if (c == '{') {
      if (depth() < kDeepest) brackets_.push_back(brace());
    } else if (c == ')' || c == ']' || c == '}') {
      if (!brackets_.empty()) brackets_.pop_back();
      if (!conditionals_.empty()) {
        conditionals_.back().lowest = std::min(conditionals_.back().lowest, depth());
      }
    }
    if (c == ';' || c == '{' || c == '}') head_ = at_;
    note(c);
  }

  Inside brace() const {
    if (last_ == '=' || last_ == ',' || last_ == '(' || last_ == '[' ||
        (last_ == '{' && inside() == Inside::kElements)) {
      return Inside::kElements;
    }
    const std::string_view head =
        text_.substr(head_, std::min(at_ - std::min(head_, at_), kLongestHead));
    if (head.find('(') != std::string_view::npos) return Inside::kStatements;
    if (has_word(head, "enum")) return Inside::kEnumerators;
    const bool type =
        has_word(head, "struct") || has_word(head, "union") || has_word(head, "class");
    return type ? Inside::kFields : Inside::kStatements;
  }

  static bool has_word(std::string_view head, std::string_view word) {
    const std::size_t at = head.find(word);
    return at != std::string_view::npos && (at == 0 || !ascii::is_word(head[at - 1])) &&
           (at + word.size() == head.size() || !ascii::is_word(head[at + word.size()]));
  }

  // A macro that makes up a line by itself, where the grammars know no such thing.
  void take_macro_line(std::size_t start) {
    std::size_t end = start;
    while (end < text_.size() && ascii::is_word(text_[end])) ++end;
    const std::string_view word = text_.substr(start, end - start);
    if (word.size() < 3 || !is_upper_case(word)) return;
    const bool called = end < text_.size() && text_[end] == '(';
    if (called) end = skip_bracketed(text_, end, '(', ')');
    std::size_t next = skip_blanks(text_, end);
    const bool ended = next < text_.size() && text_[next] == ';';
    if (ended) next = skip_blanks(text_, next + 1);
    const bool alone = next >= text_.size() || text_[next] == '\n' || text_[next] == '\r' ||
                       text_.substr(next).starts_with("//") || text_.substr(next).starts_with("/*");
    if (!alone || !is_out_of_place(called, ended, next)) return;
    blank(start, end);
    at_ = end;
  }

  bool is_out_of_place(bool called, bool ended, std::size_t next) const {
    const bool whole = last_ == ';' || last_ == '}' || last_ == '{' || last_ == ':';
    if (inside() == Inside::kEnumerators) return called && !ended;
    if (!whole || inside() > Inside::kFields) return false;
    if (inside() == Inside::kFields) return called || !ended;
    if (ended) return false;
    const std::size_t code = skip_space(text_, next);
    if (called) return std::ranges::find(kKeywords, word_at(text_, code)) != kKeywords.end();
    return code < text_.size() && (ascii::is_word(text_[code]) || text_[code] == '/');
  }

  void skip_comment() {
    const bool line = text_[at_ + 1] == '/';
    const std::size_t end = text_.find(line ? "\n" : "*/", at_ + 2);
    at_ = end == std::string_view::npos ? text_.size() : end + (line ? 0 : 2);
  }

  void skip_literal(char quote) {
    if (quote == '"' && at_ > 0 && text_[at_ - 1] == 'R' && skip_raw()) return;
    // Between digits it is a separator.
    if (quote == '\'' && at_ > 0 && ascii::is_digit(text_[at_ - 1])) {
      ++at_;
      return;
    }
    for (++at_; at_ < text_.size() && text_[at_] != '\n'; ++at_) {
      if (text_[at_] == '\\') {
        ++at_;
      } else if (text_[at_] == quote) {
        ++at_;
        return;
      }
    }
  }

  bool skip_raw() {
    const std::size_t open = text_.find('(', at_);
    if (open == std::string_view::npos || open - at_ > 20) return false;
    const std::string close = ")" + std::string(text_.substr(at_ + 1, open - at_ - 1)) + "\"";
    const std::size_t end = text_.find(close, open);
    if (end == std::string_view::npos) return false;
    at_ = end + close.size();
    return true;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t head_ = 0;  // where the statement starts
  char last_ = ';';
  bool touched_ = false;  // whether the branch holds code
  std::vector<Inside> brackets_;
  std::vector<Conditional> conditionals_;
  Ranges ranges_;
};

}  // namespace

Ranges broken_conditionals(std::string_view text) { return Scan(text).run(); }

}  // namespace kestrix::index
