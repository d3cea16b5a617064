#include "kestrix/languages/csharp/names.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "kestrix/languages/csharp/grammar.h"
#include "kestrix/languages/csharp/resolver.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index::csharp {
namespace {

constexpr std::size_t kMostParts = 10;

bool is_name_byte(char c) { return ascii::is_word(c) || static_cast<unsigned char>(c) >= 0x80; }

// The dotted name that the text starts with.
std::string_view chain_at(std::string_view text) {
  std::size_t end = 0;
  for (std::size_t parts = 0; parts < kMostParts; ++parts) {
    const std::size_t start = parts == 0 ? 0 : end + 1;
    std::size_t at = start;
    while (at < text.size() && is_name_byte(text[at])) ++at;
    if (at == start) break;
    end = at;
    if (end >= text.size() || text[end] != '.') break;
  }
  return text.substr(0, end);
}

std::string_view without_last_part(std::string_view chain) {
  return chain.substr(0, std::min(chain.rfind('.'), chain.size()));
}

class Walk {
 public:
  Walk(const SourceTree& tree, const OwnTypes& own)
      : tree_(tree), own_(own), cursor_(tree.root()), grammar_(Grammar::get()) {}

  UsedNames run() {
    path_.push_back({grammar_.symbol(tree_.root()), 0, 0});
    if (!cursor_.to_first_child()) return {};
    do {
      const TSNode node = cursor_.node();
      const Frame frame{grammar_.symbol(node), cursor_.field_id(), ts_node_start_byte(node)};
      visit(frame, node);
      if (frame.symbol != grammar_.using_directive && cursor_.to_first_child()) {
        path_.push_back(frame);
      } else if (!to_next()) {
        break;
      }
    } while (true);
    return take();
  }

 private:
  struct Frame {
    TSSymbol symbol;
    TSFieldId field;
    std::uint32_t start;
  };

  bool to_next() {
    while (!cursor_.to_next_sibling()) {
      if (path_.size() < 2) return false;
      cursor_.to_parent();
      path_.pop_back();
    }
    return true;
  }

  const Frame& above(std::size_t levels) const {
    return path_[path_.size() - std::min(levels, path_.size())];
  }

  void visit(const Frame& frame, TSNode node) {
    if (frame.symbol == grammar_.generic_name) {
      std::size_t arity = 0;
      for_each_child(node, [&](TSNode child, std::string_view) {
        if (grammar_.symbol(child) == grammar_.type_arguments) arity = arity_of(child);
      });
      take_name(frame, node, tree_.text(ts_node_child(node, 0)), arity);
    } else if (frame.symbol == grammar_.identifier) {
      take_name(frame, node, tree_.text(node), 0);
    }
  }

  // What a name is where it stands.
  enum class Place : std::uint8_t {
    kOther,
    kType,
    kAttribute,
    kQualifier,  // of a type's name
    kQualified,  // by "::"
    kScope,      // before a "."
    kMember,     // behind a "."
    kTypeParameter,
    kValue,
  };

  Place place_of(const Frame& frame) const {
    const TSSymbol parent = above(1).symbol;
    const bool is_name = frame.field == grammar_.name;
    if (grammar_.is_type_place(parent, frame.field)) return Place::kType;
    if (parent == grammar_.attribute) return is_name ? Place::kAttribute : Place::kOther;
    if (parent == grammar_.alias_qualified_name) return is_name ? Place::kQualified : Place::kOther;
    if (parent == grammar_.member_access) return is_name ? Place::kMember : Place::kScope;
    if (parent == grammar_.member_binding) return Place::kMember;
    if (parent == grammar_.type_parameter) return Place::kTypeParameter;
    if (parent == grammar_.qualified_name) {
      const bool first = frame.field == grammar_.qualifier && !is_namespace_name();
      return first ? Place::kQualifier : Place::kOther;
    }
    const bool type = parent == grammar_.error || is_in_nameof() || is_tested_type(frame);
    if (type) return Place::kType;
    const bool passed = parent == grammar_.argument || parent == grammar_.attribute_argument;
    return is_name && !passed ? Place::kValue : Place::kOther;
  }

  void take_name(const Frame& frame, TSNode node, std::string_view text, std::size_t arity) {
    const std::string_view name = plain(text);
    const Place place = place_of(frame);
    if (place == Place::kQualifier || place == Place::kQualified) {
      add_chain(node, chain_at(tree_.text().substr(frame.start)));
    } else if (place == Place::kScope) {
      add_chain(node, scope_at(frame.start));
    }
    // Namespaces may start with a lower-case letter, types do not.
    if (packaged::is_type_like(name)) take_type_like(place, name, arity, node);
  }

  void take_type_like(Place place, std::string_view name, std::size_t arity, TSNode node) {
    const std::uint32_t start = ts_node_start_byte(node);
    switch (place) {
      case Place::kType:
      case Place::kQualifier:
        return add(with_arity(name, arity), start);
      case Place::kAttribute:
        return add(kAttributeMark + with_arity(name, arity), start);
      case Place::kScope:
        scopes_.push_back({with_arity(name, arity), name, start});
        return;
      case Place::kMember:
        return add_call(node, name);
      case Place::kTypeParameter:
        type_parameters_.insert(name);
        [[fallthrough]];
      case Place::kValue:
        values_.insert(name);
        return;
      case Place::kQualified:
      case Place::kOther:
        return;
    }
  }

  // The names before a member's name. Where the value is compared with a pattern, the last one may
  // be a type's.
  std::string_view scope_at(std::uint32_t start) const {
    const std::string_view chain = chain_at(tree_.text().substr(start));
    std::size_t levels = 1;
    while (above(levels).symbol == grammar_.member_access) ++levels;
    const bool pattern = above(levels).symbol == grammar_.constant_pattern;
    return pattern ? chain : without_last_part(chain);
  }

  // Whether the name read is a part of what a namespace declaration names.
  bool is_namespace_name() const {
    std::size_t levels = 1;
    while (levels < path_.size() && above(levels).symbol == grammar_.qualified_name) ++levels;
    const Frame& outermost = above(levels - 1);
    return outermost.field == grammar_.name && grammar_.is_namespace(above(levels).symbol);
  }

  // The grammar takes "x is Type || y" for "x is (Type || y)".
  bool is_tested_type(const Frame& frame) const {
    const Frame* node = &frame;
    std::size_t level = 1;
    for (; above(level).symbol == grammar_.binary && node->field == grammar_.left; ++level) {
      node = &above(level);
    }
    return level > 1 && above(level).symbol == grammar_.constant_pattern;
  }

  bool is_in_nameof() const {
    return above(1).symbol == grammar_.argument && above(3).symbol == grammar_.invocation &&
           tree_.text().substr(above(3).start).starts_with("nameof");
  }

  void add(std::string name, std::uint32_t at) {
    if (!own_.contains(name, at)) ++used_.names[std::move(name)];
  }

  void add_call(TSNode node, std::string_view name) {
    const std::uint32_t end = ts_node_end_byte(node);
    if (tree_.text().substr(end).starts_with('(')) {
      ++used_.names[kMethodMark + std::string(name)];
    }
  }

  void add_chain(TSNode node, std::string_view chain) {
    if (chain.find('.') == chain.npos) return;
    auto found = used_.chains.find(chain);
    if (found == used_.chains.end()) {
      found = used_.chains.emplace(chain, Chain{.line = SourceTree::line(node)}).first;
    }
    ++found->second.uses;
  }

  // What stands before a "." is a type unless the file has a value of that name.
  UsedNames take() {
    for (auto& [name, text, at] : scopes_) {
      if (!values_.contains(text)) add(std::move(name), at);
    }
    for (const std::string_view name : type_parameters_) used_.names.erase(std::string(name));
    return std::move(used_);
  }

  struct Scope {
    std::string name;
    std::string_view text;
    std::uint32_t at;
  };

  const SourceTree& tree_;
  const OwnTypes& own_;
  TreeCursor cursor_;
  const Grammar& grammar_;
  std::vector<Frame> path_;  // the nodes around the one read
  UsedNames used_;
  std::vector<Scope> scopes_;
  std::unordered_set<std::string_view, SeededHash> values_;
  std::unordered_set<std::string_view, SeededHash> type_parameters_;
};

}  // namespace

std::string_view plain(std::string_view identifier) {
  return identifier.substr(identifier.starts_with('@') ? 1 : 0);
}

std::string with_arity(std::string_view name, std::size_t arity) {
  std::string text(name);
  if (arity > 0) text += kArityMark + std::to_string(arity);
  return text;
}

std::size_t arity_of(TSNode list) {
  std::size_t commas = 0;
  TreeCursor cursor(list);
  for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
    if (type_of(cursor.node()) == ",") ++commas;
  }
  return commas + 1;
}

void OwnTypes::add_nested(std::string name, std::uint32_t start, std::uint32_t end) {
  auto& stretches = nested_[std::move(name)];
  if (stretches.empty() || start > stretches.back().second) {
    stretches.emplace_back(start, end);
  } else {
    stretches.back().second = std::max(stretches.back().second, end);
  }
}

bool OwnTypes::contains(const std::string& name, std::uint32_t at) const {
  if (everywhere_.contains(name)) return true;
  const auto nested = nested_.find(name);
  if (nested == nested_.end()) return false;
  const auto after =
      std::ranges::upper_bound(nested->second, at, {}, [](const Stretch& s) { return s.first; });
  return after != nested->second.begin() && at < std::prev(after)->second;
}

UsedNames used_names(const SourceTree& tree, const OwnTypes& own) { return Walk(tree, own).run(); }

}  // namespace kestrix::index::csharp
