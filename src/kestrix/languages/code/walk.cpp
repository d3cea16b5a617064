#include "kestrix/languages/code/walk.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kestrix/languages/code/mentions.h"
#include "kestrix/languages/code/names.h"
#include "kestrix/languages/code/values.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/tree_cursor.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

using Rule = CompiledRules::Rule;

constexpr std::size_t kMostBases = 64;        // of one type
constexpr std::size_t kMostContexts = 2'000;  // that macros make in one file

bool is_callable(DeclarationKind kind) {
  return kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
}

bool is_value(DeclarationKind kind) {
  return kind == DeclarationKind::kConstant || kind == DeclarationKind::kVariable;
}

bool is_member(DeclarationKind kind) {
  return kind == DeclarationKind::kField || kind == DeclarationKind::kMethod;
}

bool is_of(Role role, std::initializer_list<Role> roles) {
  return std::ranges::find(roles, role) != roles.end();
}

// Behind anything that the rules do not know, a name is no longer what is listed or called.
Role beyond(Role role) {
  return is_of(role, {Role::kLists, Role::kCalls, Role::kConstructs}) ? Role::kUses : role;
}

// "raise Name(…)" throws what it makes, "@name(…)" annotates with what it calls.
Role called(Role around, Role role) {
  return is_of(around, {Role::kThrows, Role::kAnnotates, Role::kExtends}) ? around : role;
}

bool says_more(const CodeRule& rule, Role known) {
  if (!rule.weak || known == Role::kUses) return true;
  return known == Role::kLists && !rule.keeps_lists;
}

// What holds for the children of a node.
struct Frame {
  TSNode node{};
  TSSymbol symbol = 0;
  Act act = Act::kPass;
  Role role = Role::kUses;
  std::uint32_t holder = 0;      // the declaration that they stand in, from one
  const void* name = nullptr;    // the child that is a declared name
  const void* object = nullptr;  // the child that is named with what is called of it
  const void* first = nullptr;   // the only argument that has the role of the arguments
  const void* callee = nullptr;  // of calls; of one without a callee itself
  TSFieldId arguments = 0;       // and the field of what they are called with
  Role callee_role = Role::kCalls;
  Role argument_role = Role::kLists;
  bool scope = false;            // names bound in it are its own
  bool of_type = false;          // and it is a type's or a block's
  bool ahead = false;            // annotations belong to the declaration that follows
  bool keyed = false;            // keys name members
  bool nameless = false;         // members belong to a type without a name
  bool member = false;           // names are those of members, but for type arguments
  std::optional<Role> errors{};  // of names that stand for errors
  TSFieldId names = 0;           // of a declaration: the field of its names
  std::uint32_t declared = 0;    // and its place; 0: its names are local
  TSNode binds{};                // names that are local when the node has ended
  std::string_view owner{};      // the type that is declared elsewhere
  bool hidden = false;           // members from here on are
  bool body = false;             // its block belongs to the type around
  std::uint32_t around = 0;      // what the macros around say, in `contexts_`
  std::uint32_t path = 0;        // start of a path that is more than names, from one; 0: none
  Role path_role = Role::kUses;
};

// Names that functions bind, by how many of the functions around the place do.
class LocalNames {
 public:
  void enter(bool function) {
    bound_.emplace_back();
    if (function) ++functions_;
  }
  void leave(bool function) {
    if (function) --functions_;
    for (const std::string_view name : bound_.back()) {
      if (const auto found = counts_.find(name); --found->second == 0) counts_.erase(found);
    }
    bound_.pop_back();
  }
  bool in_function() const { return functions_ > 0; }
  void bind(std::string_view name) {
    if (in_function()) bind_here(name);
  }
  // Also to a type that has parameters.
  void bind_here(std::string_view name) {
    if (bound_.empty() || name.empty()) return;
    bound_.back().push_back(name);
    ++counts_[name];
  }
  bool contains(std::string_view name) const { return !counts_.empty() && counts_.contains(name); }

 private:
  std::size_t functions_ = 0;
  std::vector<std::vector<std::string_view>> bound_;
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> counts_;
};

class CodeWalk {
 public:
  CodeWalk(const CompiledRules& rules, const SourceTree& tree, FileFacts& facts)
      : rules_(rules), source_(rules.source()), tree_(tree), facts_(facts) {
    if (!source_.extensions) return;
    for (const ImportFact& import : facts.imports) {
      if (!import.local.empty()) imported_.insert(import.local);
    }
  }

  void run() {
    TreeCursor cursor(tree_.root());
    frames_.push_back({.node = tree_.root(), .symbol = ts_node_symbol(tree_.root())});
    if (!cursor.to_first_child()) return;
    for (;;) {
      if (enter(cursor.node(), cursor.field_id())) {
        cursor.to_first_child();
        continue;
      }
      while (!cursor.to_next_sibling()) {
        if (frames_.size() == 1) return finish();
        cursor.to_parent();
        leave();
      }
    }
  }

 private:
  void finish() {
    annotate(0);
    settle();
    count_slots();
    if (source_.hidden != nullptr) {
      for (const Mention& found : source_.hidden(tree_, facts_.declarations))
        mentions_.add(found.name, found.role, found.within, found.line);
    }
    facts_.mentions = mentions_.take();
    for (const Mention& mention : facts_.mentions) {
      if (mention.role > Role::kImplements || mention.within == 0) continue;
      Declaration& type = facts_.declarations[mention.within - 1];
      if (is_type(type.kind) && type.bases.size() < kMostBases) type.bases.push_back(mention.name);
    }
    facts_.dropped += mentions_.dropped();
    if (source_.finish == nullptr) return;
    source_.finish(facts_);
    order_mentions(facts_.mentions);
  }

  // Whether the node's children are to be walked over; their frame is pushed then.
  bool enter(TSNode node, TSFieldId field) {
    if (!ts_node_is_named(node) && ts_node_child_count(node) == 0) return false;
    const Rule* rule = rules_.find(ts_node_symbol(node), frames_.back().symbol, field);
    Frame frame = below(frames_.back(), node, field);
    if (is_further_name(frames_.back(), node, field)) return false;
    if (node.id == frames_.back().object) return false;
    if (node.id == frames_.back().name && (rule == nullptr || rule->rule->act != Act::kDeclare)) {
      return false;
    }
    if (rule == nullptr) {
      frame.role = beyond(frame.role);
      return push(frame, node);
    }
    take_role(*rule->rule, node, frame);
    if (rule->rule->errors) frame.errors = rule->rule->errors;
    frame.act = rule->rule->act;
    frame.ahead |= rule->rule->ahead;
    return visit(*rule, node, frame);
  }

  void take_role(const CodeRule& rule, TSNode node, Frame& frame) const {
    const auto role = rule.ask == nullptr ? rule.role : rule.ask(node);
    if (role && role_counts(rule, frame)) {
      frame.role = *role;
      frame.errors.reset();
    } else if (rule.ask != nullptr) {
      frame.role = beyond(frame.role);
    }
  }

  bool role_counts(const CodeRule& rule, const Frame& frame) const {
    if (!says_more(rule, frame.role)) return false;
    return !rule.in_type || (!locals_.in_function() && frame.holder > 0 &&
                             is_type(facts_.declarations[frame.holder - 1].kind));
  }

  static Frame below(const Frame& up, TSNode node, TSFieldId field) {
    Frame frame{.symbol = ts_node_symbol(node),
                .role = up.role,
                .holder = up.holder,
                .ahead = up.ahead,
                .keyed = up.keyed,
                .nameless = up.nameless,
                .member = up.member,
                .errors = up.errors,
                .owner = up.owner,
                .hidden = up.hidden,
                .around = up.around};
    if (is_part_of_path(up)) {
      frame.path = up.path;
      frame.path_role = up.path_role;
    }
    if (up.callee != nullptr && node.id == up.callee) {
      frame.role = called(up.role, up.callee_role);
    } else if (up.arguments != 0 && field == up.arguments) {
      frame.role = up.argument_role;
      frame.first = up.first;
    } else if (up.callee != nullptr) {
      // Without a field for them all that is no callee are arguments.
      frame.role = up.arguments == 0 ? up.argument_role : Role::kUses;
    } else if (up.first != nullptr && node.id != up.first) {
      frame.role = Role::kLists;
    }
    return frame;
  }

  static bool is_part_of_path(const Frame& up) {
    return up.path != 0 && (up.act == Act::kPath || up.act == Act::kPass);
  }

  bool push(const Frame& frame, TSNode node) {
    if (ts_node_child_count(node) == 0) return false;
    if (frame.scope) locals_.enter(!frame.of_type);
    frames_.push_back(frame);
    frames_.back().node = node;
    return true;
  }

  void leave() {
    const Frame& frame = frames_.back();
    if (frame.binds.id != nullptr) bind(frame.binds);
    if (frame.scope) locals_.leave(!frame.of_type);
    frames_.pop_back();
  }

  bool visit(const Rule& rule, TSNode node, Frame& frame) {
    switch (rule.rule->act) {
      case Act::kSkip:
      case Act::kScalar:
        return false;
      case Act::kName:
        mention(node, tree_.text(node), frame);
        return false;
      case Act::kProperName:
        if (!starts_in_lower_case(tree_.text(node))) mention(node, tree_.text(node), frame);
        return false;
      case Act::kPath:
        return visit_path(node, frame);
      case Act::kTypePath:
        mention(node, text_of_type(node), frame);
        return push(frame, node);
      case Act::kInfix:
        frame.callee = ts_node_named_child(node, 1).id;
        frame.argument_role = frame.role;
        return push(frame, node);
      case Act::kBind:
        if (source_.injected != nullptr && source_.injected(tree_, node)) {
          frame.role = Role::kUses;
          mention(node, tree_.text(node), frame);
        }
        bind(node);
        return false;
      case Act::kBindBehind:
        frames_.back().binds = node;
        return false;
      case Act::kBindType:
        bind_to_declaration(node);
        return false;
      case Act::kPattern:
        if (!starts_in_lower_case(tree_.text(node))) {
          mention(node, tree_.text(node), frame);
        } else {
          locals_.bind(tree_.text(node));
        }
        return false;
      case Act::kSection:
        if (const auto hidden = source_.hides(tree_.text(node))) {
          frames_.back().hidden = *hidden;
        } else {
          mention(node, tree_.text(node), frame);
        }
        return false;
      case Act::kToken:
        visit_token(node, frame);
        return false;
      case Act::kLiteral:
        return visit_literal(rule, node, frame);
      case Act::kKey:
        return !frame.keyed && push(frame, node);
      case Act::kMembers:
        enter_members(node, frame);
        return push(frame, node);
      case Act::kString:
        add_string(node, frame);
        frame.role = Role::kUses;
        return push(frame, node);
      case Act::kTable:
      case Act::kEntry:
        if (rule.rule->act == Act::kEntry) frame.name = label_of(node);
        if (!is_of(frame.role, {Role::kCatches, Role::kType, Role::kExtends, Role::kThrows}))
          frame.role = Role::kLists;
        return push(frame, node);
      case Act::kCall:
      case Act::kConstruct:
      case Act::kSubscript:
        return visit_call(rule, node, frame);
      case Act::kScope:
        frame.scope = true;
        frame.of_type = true;
        break;
      case Act::kGeneric:
        return visit_generic(rule, node, frame);
      case Act::kFunctionValue:
        frame.scope = !frames_.back().body;
        // What a function throws that is no more than an expression makes what is thrown.
        if (frame.role != Role::kThrows) frame.role = Role::kUses;
        frame.errors.reset();
        return push(frame, node);
      case Act::kTypeArguments:
        frame.member = false;
        frame.role = role_of_type_arguments(node, frame.role);
        return push(frame, node);
      case Act::kMember:
        frame.member = true;
        return push(frame, node);
      case Act::kNameless:
        frame.nameless = true;
        return push(frame, node);
      case Act::kDeclare:
        return declare(rule, node, frame);
      case Act::kPass:
        break;
    }
    return push(frame, node);
  }

  // Of "name = value" the name: of a parameter, which belongs to what is called.
  static const void* label_of(TSNode entry) {
    const TSNode label = ts_node_child(entry, 0);
    const TSNode next = ts_node_child(entry, 1);
    if (ts_node_is_null(next) || ts_node_child_count(label) > 0) return nullptr;
    return std::string_view(ts_node_type(next)) == "=" ? label.id : nullptr;
  }

  // The names of a type, without annotations before and arguments behind them.
  std::string_view text_of_type(TSNode node) const {
    TSNode name = ts_node_named_child(node, 0);
    if (!ts_node_is_null(name) && ts_node_child_count(name) > 0) {
      name = ts_node_next_named_sibling(name);
    }
    const TSNode first = ts_node_is_null(name) ? node : name;
    const auto text = tree_.text(ts_node_start_byte(first), ts_node_end_byte(node));
    return text.substr(0, text.find('<'));
  }

  // "value.run()" or "Type::run", where "run" is imported: no member of the value. What starts in
  // upper case before a "." may be a type that has a member of that name.
  bool add_extension(TSNode node, std::string_view text, const Frame& frame) {
    if (!source_.extensions || !is_of(frame.role, {Role::kCalls, Role::kLists})) return false;
    const std::size_t joint = text.find_last_of(".:");
    if (joint == std::string_view::npos || !imported_.contains(text.substr(joint + 1)))
      return false;
    const bool handed = text[joint] == ':';
    if (!handed && frame.role != Role::kCalls) return false;
    const std::string_view name = text.substr(joint + 1);
    if (!handed && starts_in_upper_case(name) && starts_in_upper_case(text)) return false;
    add(name, frame.role, frame, SourceTree::line(node));
    return true;
  }

  bool visit_path(TSNode node, Frame& frame) {
    std::string_view text = tree_.text(node);
    if (text.ends_with("::class")) text.remove_suffix(7);
    if (frame.role != Role::kCalls || source_.flat_environments) {
      if (read_member(node, text, frame)) return false;
    }
    const bool extension = add_extension(node, text, frame);
    if (extension && name_path(text)) return false;
    if (!extension && mention(node, text, frame)) return false;
    // Where a grammar has nodes for generic names, they are left to them.
    const bool whole = extension || source_.defined_elsewhere;
    const auto plain = whole ? std::nullopt : without_type_arguments(text);
    if (plain && mention(node, *plain, frame)) {
      frame.member = true;
      return push(frame, node);
    }
    frame.path = ts_node_start_byte(node) + 1;
    frame.path_role = frame.role;
    frame.role = beyond(frame.role);
    return push(frame, node);
  }

  // "a::Name<T>": the path up to the arguments is one mention.
  bool visit_generic(const Rule& rule, TSNode node, Frame& frame) {
    const TSNode name = ts_node_child_by_field_id(node, rule.name);
    if (ts_node_is_null(name)) return push(frame, node);
    if (frame.path != 0) frame.role = frame.path_role;
    const std::uint32_t start = frame.path != 0 ? frame.path - 1 : ts_node_start_byte(node);
    const std::string_view text = tree_.text(start, ts_node_end_byte(name));
    mention(node, text, frame);
    frame.name = name.id;
    frame.arguments = rule.value;
    frame.argument_role = Role::kUses;
    if (const auto path = name_path(text)) {
      if (const CallRule* call = call_rule(*path, text.back(), false))
        frame.argument_role = call->role;
    }
    frame.role = Role::kUses;
    frame.path = 0;
    return push(frame, node);
  }

  Role role_of_type_arguments(TSNode list, Role role) const {
    if (source_.type_arguments != nullptr) return source_.type_arguments(tree_, list, role);
    if (role == Role::kLists) return role;
    const bool type = is_of(
        role, {Role::kExtends, Role::kImplements, Role::kType, Role::kConstructs, Role::kCalls});
    return type ? Role::kType : Role::kUses;
  }

  // "process.env.KEY"
  bool read_member(TSNode node, std::string_view text, const Frame& frame) {
    for (const std::string_view base : source_.environments) {
      if (text.size() <= base.size() + 1 || !text.starts_with(base)) continue;
      std::string_view key = text.substr(base.size());
      if (key.starts_with("?.")) key.remove_prefix(1);
      if (!key.starts_with('.')) continue;
      key.remove_prefix(1);
      if (source_.flat_environments) {
        const std::size_t end = key.find_first_of(".?!");
        if (end == std::string_view::npos && frame.role == Role::kCalls) return false;
        key = key.substr(0, end);
      }
      if (const auto path = name_path(key)) add(*path, Role::kReads, frame, SourceTree::line(node));
      return true;
    }
    return false;
  }

  bool read_setting(TSNode node, std::string_view text, const Frame& frame) {
    for (const std::string_view base : source_.settings) {
      if (!text.starts_with(base)) continue;
      const auto path = name_path(text.substr(base.size(), kLongestMention));
      const std::string key = path ? path->substr(0, path->find('.')) : std::string();
      if (!key.empty() && text[base.size()] == '.')
        add(key, Role::kReads, frame, SourceTree::line(node));
      return true;
    }
    return false;
  }

  bool visit_literal(const Rule& rule, TSNode node, Frame& frame) {
    const TSNode type = ts_node_child_by_field_id(node, rule.name);
    frame.callee = ts_node_is_null(type) ? node.id : type.id;
    frame.callee_role = called(frame.role, Role::kConstructs);
    frame.arguments = rule.value;
    if (frame.role != Role::kThrows) frame.role = Role::kLists;
    frame.keyed = source_.keyed_by_member == nullptr || source_.keyed_by_member(node);
    return push(frame, node);
  }

  // Tokens are not parsed: what stands around a word tells what it is.
  void visit_token(TSNode node, Frame& frame) {
    const Token token = token_at(tree_.text(), ts_node_start_byte(node));
    if (token.path.empty()) return;
    const std::string_view last = token.path.substr(token.path.rfind(':') + 1);
    if (frame.role == Role::kAnnotates && starts_in_lower_case(last)) return;
    if (frame.role == Role::kThrows && starts_in_lower_case(last)) frame.role = Role::kUses;
    if (is_of(frame.role, {Role::kUses, Role::kLists})) {
      if (token.typed && starts_in_upper_case(last)) frame.role = Role::kType;
      if (token.next == '(' || token.next == '!') frame.role = Role::kCalls;
      if (token.next == '{') frame.role = Role::kUses;
      if (frame.role == Role::kCalls) read_token(node, token, frame);
    }
    mention(node, token.path, frame);
  }

  // "env::var("KEY")" among tokens.
  void read_token(TSNode node, const Token& token, const Frame& frame) {
    const auto path = name_path(token.path);
    const CallRule* call = path ? call_rule(*path, token.path.back(), false) : nullptr;
    if (call == nullptr || call->role != Role::kReads) return;
    std::string_view rest = tree_.text().substr(ts_node_start_byte(node) + token.path.size());
    rest = rest.substr(0, kLongestMention);
    const std::size_t open = rest.find('"');
    const std::size_t close = rest.find('"', open + 1);
    if (open == std::string_view::npos || close == std::string_view::npos) return;
    if (rest.substr(0, open).find_first_not_of("!( \t\r\n") != std::string_view::npos) return;
    const std::string_view key = rest.substr(open + 1, close - open - 1);
    if (name_path(key)) add(key, Role::kReads, frame, SourceTree::line(node));
  }

  void enter_members(TSNode node, Frame& frame) const {
    frame.owner = source_.owner(tree_, node);
    if (const auto type = types_.find(frame.owner); type != types_.end()) {
      frame.holder = type->second;
      frame.owner = {};
    }
  }

  bool visit_call(const Rule& rule, TSNode node, Frame& frame) {
    frame.arguments = rule.value;
    if (rule.rule->act == Act::kConstruct) {
      const bool type = source_.makes_type != nullptr && source_.makes_type(node);
      frame.callee_role = type ? Role::kExtends : Role::kConstructs;
    }
    if (rule.rule->act == Act::kSubscript) {
      frame.callee_role = Role::kUses;
      frame.argument_role = Role::kUses;
    }
    const TSNode callee =
        rule.name == 0 ? ts_node_named_child(node, 0) : ts_node_child_by_field_id(node, rule.name);
    frame.callee = ts_node_is_null(callee) ? node.id : callee.id;
    if (ts_node_is_null(callee)) return push(frame, node);
    const TSNode object =
        rule.object == 0 ? TSNode{} : ts_node_child_by_field_id(node, rule.object);
    const bool member = object.id != nullptr;
    std::string_view text = tree_.text(callee);
    if (member && rule.rule->in_type) frame.role = Role::kUses;
    if (member) text = visit_object(node, object, callee, frame);
    if (source_.open_calls && rule.rule->act == Act::kCall) add_open_call(callee, frame);
    auto path = name_path(text);
    if (!path) path = name_path(called_member(text).name);
    if (!path) return push(frame, node);
    if (source_.macro != nullptr && (!member || path->find('.') != std::string::npos) &&
        !note_macro(node, callee, text, frame)) {
      return false;
    }
    if (rule.rule->act == Act::kSubscript) {
      if (is_environment(*path) || gives_settings(*path)) add_key(node, callee, rule.value, frame);
    } else if (const CallRule* call = call_rule(*path, text.back(), member)) {
      if (call->role == Role::kReads) {
        if (!call->sole || is_sole_argument(node, callee, rule.value))
          add_key(node, callee, rule.value, frame);
      } else if (call->role != Role::kExtends || makes_type()) {
        frame.argument_role = call->role;
        if (call->first) frame.first = first_argument(node, rule.value).id;
      }
    }
    return push(frame, node);
  }

  // Whether what is being looked at is the value of a declared type.
  bool makes_type() const {
    const std::uint32_t declared = frames_.back().declared;
    return declared > 0 && is_type(facts_.declarations[declared - 1].kind);
  }

  // Whether anything else in the call counts.
  bool note_macro(TSNode call, TSNode callee, std::string_view name, Frame& frame) {
    MacroNotes notes{.around = contexts_[frame.around],
                     .of_type = makes_type() || frame.role == Role::kExtends};
    source_.macro(tree_, call, name, notes);
    if (notes.quiet) frame.name = callee.id;
    frame.body = notes.body;
    for (const MacroNotes::Member& member : notes.members) add_member(member, frame);
    for (const auto& [mentioned, role] : notes.mentions)
      add(mentioned, role, frame, SourceTree::line(call));
    for (const std::string_view hidden : notes.hidden) hidden_.emplace(frame.holder, hidden);
    if (notes.inside && contexts_.size() < kMostContexts) {
      frame.around = static_cast<std::uint32_t>(contexts_.size());
      contexts_.push_back(std::move(*notes.inside));
    }
    return !notes.skip;
  }

  void add_member(const MacroNotes::Member& member, const Frame& frame) {
    const std::string_view text = tree_.text(member.name);
    const std::string_view content = literal_content(text);
    const auto name = name_path(content.empty() ? text : content);
    if (!name || frame.holder == 0) return;
    if (!is_type(facts_.declarations[frame.holder - 1].kind)) return;
    if (facts_.declarations.size() >= kMostDeclarations) {
      ++facts_.dropped;
      return;
    }
    Frame unused = frame;
    const std::uint32_t line = SourceTree::line(member.name);
    take({.kind = member.kind,
          .name = *name,
          .line = line,
          .last_line = line,
          .container = frame.holder,
          .exported = !frame.hidden},
         unused);
  }

  // Mentions what is called of an object as one path, if the object is nothing but names; else the
  // name alone says what is called. Returns what the call is known by.
  std::string_view visit_object(TSNode call, TSNode object, TSNode callee, Frame& frame) {
    frame.name = callee.id;
    const std::string_view name = tree_.text(callee);
    const std::string_view text = tree_.text(ts_node_start_byte(object), ts_node_end_byte(callee));
    if (ts_node_eq(callee, ts_node_child(call, ts_node_child_count(call) - 1)) &&
        read_setting(object, text, frame)) {
      frame.object = object.id;
      return name;
    }
    const bool whole = !source_.capital_types ||
                       (starts_in_upper_case(text) && !is_call(object, ts_node_symbol(call)));
    if (!whole) return name;
    if (makes_type()) {
      frame.object = object.id;
      return text;
    }
    Frame as = frame;
    as.role = called(frame.role, frame.callee_role);
    const bool makes = std::ranges::find(source_.makers, name) != source_.makers.end();
    if (makes && as.role == Role::kCalls) as.role = Role::kConstructs;
    if (!mention(object, makes ? tree_.text(object) : text, as)) return name;
    frame.object = object.id;
    return text;
  }

  bool is_call(TSNode node, TSSymbol parent) const {
    const Rule* rule = rules_.find(ts_node_symbol(node), parent, 0);
    return rule != nullptr && rule->rule->act == Act::kCall;
  }

  // What is called of a type's name is declared in that type.
  void add_open_call(TSNode callee, const Frame& frame) {
    const CalledMember member = called_member(tree_.text(callee));
    if (member.name.empty()) return;
    const bool known = std::ranges::find(source_.self, member.object) != source_.self.end();
    const bool simple = member.object.find_first_of(".(") == std::string_view::npos;
    if (known || (simple && starts_in_upper_case(member.object))) return;
    mentions_.add(":" + std::string(member.name), Role::kCalls, frame.holder,
                  ts_node_end_point(callee).row + 1);
  }

  bool gives_settings(std::string_view path) const {
    return std::ranges::any_of(source_.keyed_settings, [&](std::string_view end) {
      return path.ends_with(end) &&
             (path.size() == end.size() || path[path.size() - end.size() - 1] == '.');
    });
  }

  bool is_environment(std::string_view path) const {
    return std::ranges::find(source_.environments, path) != source_.environments.end();
  }

  // Where a method may end with "?", it is another one than that without.
  const CallRule* call_rule(std::string_view path, char last, bool member) const {
    for (const CallRule& call : source_.calls) {
      std::string_view callee = call.callee;
      if ((last == '?') != callee.ends_with('?') || (call.bare && member)) continue;
      if (last == '?') callee.remove_suffix(1);
      if (!path.ends_with(callee)) continue;
      const std::size_t before = path.size() - callee.size();
      if (before == 0 || path[before - 1] == '.') return &call;
    }
    return nullptr;
  }

  static TSNode first_argument(TSNode call, TSFieldId arguments) {
    const TSNode list = ts_node_child_by_field_id(call, arguments);
    return ts_node_is_null(list) ? list : ts_node_named_child(list, 0);
  }

  static bool is_sole_argument(TSNode call, TSNode callee, TSFieldId arguments) {
    const TSNode list = arguments == 0 ? ts_node_next_named_sibling(callee)
                                       : ts_node_child_by_field_id(call, arguments);
    return !ts_node_is_null(list) && ts_node_named_child_count(list) == 1;
  }

  // The first argument, if it is a string, is what is read.
  void add_key(TSNode call, TSNode callee, TSFieldId arguments, const Frame& frame) {
    TSNode node = arguments == 0 ? ts_node_next_named_sibling(callee)
                                 : ts_node_child_by_field_id(call, arguments);
    TSSymbol parent = ts_node_symbol(call);
    for (int depth = 0; depth < 3 && !ts_node_is_null(node); ++depth) {
      const Rule* rule =
          rules_.find(ts_node_symbol(node), parent, depth == 0 ? arguments : TSFieldId{0});
      if (rule != nullptr && rule->rule->act == Act::kString) {
        std::string_view key = literal_content(tree_.text(node));
        if (source_.key_of != nullptr) key = source_.key_of(key);
        if (!key.empty() && key.size() <= kLongestMention && name_path(key)) {
          add(key, Role::kReads, frame, SourceTree::line(node));
        }
        return;
      }
      if (rule == nullptr || rule->rule->ask != nullptr) return;  // a part of a key is none
      const std::uint32_t children = ts_node_named_child_count(node);
      const bool entry = rule->rule->act == Act::kEntry && children > 0;
      parent = ts_node_symbol(node);
      node = ts_node_named_child(node, entry ? children - 1 : 0);
    }
  }

  // "env = "KEY"" among the tokens of an attribute.
  bool is_key(TSNode node) const {
    std::string_view before = tree_.text().substr(0, ts_node_start_byte(node));
    const auto trim = [&] {
      while (!before.empty() && ascii::is_space(before.back())) before.remove_suffix(1);
    };
    if (source_.key_words.empty()) return false;
    trim();
    if (!before.ends_with('=')) return false;
    before.remove_suffix(1);
    trim();
    return std::ranges::any_of(source_.key_words, [&](std::string_view word) {
      if (!before.ends_with(word)) return false;
      const std::size_t start = before.size() - word.size();
      return start == 0 || !ascii::is_word(before[start - 1]);
    });
  }

  void add_string(TSNode node, const Frame& frame) {
    const std::string_view content = literal_content(tree_.text(node));
    if (frame.role == Role::kType) {
      if (const auto path = name_path(content))
        add(*path, Role::kType, frame, SourceTree::line(node));
    } else if (frame.ahead && is_key(node) && name_path(content)) {
      add(content, Role::kReads, frame, SourceTree::line(node));
    } else if (may_name_something(content)) {
      const bool action = content.find('#') != std::string_view::npos;
      std::string whole = action ? contexts_[frame.around] : std::string();
      add(whole.append(content), Role::kString, frame, SourceTree::line(node));
    }
  }

  // Whether the text is a name or path of names; it is taken as a mention unless it is local.
  bool mention(TSNode node, std::string_view text, const Frame& frame) {
    if (frame.member) return true;
    auto path = name_path(text);
    if (!path) return false;
    const bool absolute = source_.capital_types && text.starts_with("::");
    if (absolute || text.starts_with('\\')) path->insert(0, 1, '.');
    const std::string_view root = std::string_view(*path).substr(0, path->find('.'));
    if (std::ranges::find(source_.self, root) != source_.self.end()) {
      add_own_member(*path, root, frame, SourceTree::line(node));
      return true;
    }
    if (source_.variables != '\0' && root.starts_with(source_.variables)) return true;
    const bool function = frame.role == Role::kCalls && root.size() == path->size();
    if (locals_.contains(root) && !(function && source_.functions_apart)) return true;
    const bool plain = is_of(frame.role, {Role::kUses, Role::kLists, Role::kConstructs});
    Role role = frame.role;
    if (frame.errors && plain && source_.is_error(*path, frame.role)) role = *frame.errors;
    if (role == Role::kThrows && source_.thrown_types) role = thrown(*path);
    if (role == Role::kImplements && !frame.owner.empty()) {
      claims_.push_back({{frame.owner, text}, SourceTree::line(node)});
    } else {
      add(*path, role, frame, SourceTree::line(node));
    }
    return true;
  }

  // Of "Type.make" the type; what makes an error by itself is called.
  static Role thrown(std::string& path) {
    const std::size_t dot = path.rfind('.');
    const std::size_t last = dot + 1;  // 0 without a dot
    if (!starts_in_lower_case(std::string_view(path).substr(last))) return Role::kThrows;
    if (dot == std::string::npos) return Role::kCalls;
    const std::string_view type = std::string_view(path).substr(0, dot);
    if (!starts_in_upper_case(type.substr(type.rfind('.') + 1))) return Role::kCalls;
    path.erase(dot);
    return Role::kThrows;
  }

  // "this.run()": what is called or handed over by the object itself.
  void add_own_member(std::string_view path, std::string_view self, const Frame& frame,
                      std::uint32_t line) {
    if (path.size() <= self.size() || !is_of(frame.role, {Role::kCalls, Role::kLists})) return;
    if (std::ranges::find(source_.own, self) != source_.own.end()) {
      add("@" + std::string(path.substr(self.size() + 1)), frame.role, frame, line);
    } else if (source_.members_in_scope && self == source_.self.front()) {
      add(path.substr(self.size() + 1), frame.role, frame, line);
    }
  }

  void add(std::string_view name, Role role, const Frame& frame, std::uint32_t line) {
    if (frame.ahead && role == Role::kAnnotates) {
      annotations_.emplace_back(std::string(name), line);
    } else {
      mentions_.add(name, role, frame.holder, line);
    }
  }

  void annotate(std::uint32_t declared) {
    for (const auto& [name, line] : annotations_)
      mentions_.add(name, Role::kAnnotates, declared, line);
    annotations_.clear();
  }

  void bind_name(std::string_view name) {
    if (source_.variables == '\0') locals_.bind(name);
  }

  // The name, or each of the names that stand directly in the node.
  void bind(TSNode node) {
    TreeCursor cursor(node);
    if (!cursor.to_first_child()) return locals_.bind(tree_.text(node));
    do {
      if (ts_node_is_named(cursor.node()) && ts_node_child_count(cursor.node()) == 0) {
        locals_.bind(tree_.text(cursor.node()));
      }
    } while (cursor.to_next_sibling());
  }

  // A type has no scope before it has parameters, and none opens between it and them.
  void bind_to_declaration(TSNode node) {
    const auto frame = std::find_if(frames_.rbegin(), frames_.rend(),
                                    [](const Frame& up) { return up.declared > 0 || up.scope; });
    if (frame == frames_.rend()) return;
    if (!frame->scope) {
      locals_.enter(false);
      frame->scope = true;
      frame->of_type = true;
    }
    locals_.bind_here(tree_.text(node));
  }

  // "var a, b": what is declared like the name before.
  bool is_further_name(const Frame& up, TSNode node, TSFieldId field) {
    if (up.names == 0 || field != up.names || node.id == up.name) return false;
    if (ts_node_child_count(node) > 0 || !ts_node_is_named(node)) return false;
    const std::string_view name = tree_.text(node);
    if (up.declared == 0) {
      locals_.bind(name);
      return true;
    }
    if (facts_.declarations.size() >= kMostDeclarations) {
      ++facts_.dropped;
      return true;
    }
    Declaration as = facts_.declarations[up.declared - 1];
    as.name = name;
    as.line = SourceTree::line(node);
    as.shape = ValueShape::kUnknown;
    as.size = 0;
    if (source_.exported != nullptr) as.exported = source_.exported(tree_, node, as);
    if (as.container > 0 && as.kind == DeclarationKind::kField) {
      ++facts_.declarations[as.container - 1].fields;
    }
    facts_.declarations.push_back(std::move(as));
    return true;
  }

  // What is said of types that are declared further down.
  void settle() {
    for (Declaration& as : facts_.declarations) {
      if (hidden_.empty()) break;
      if (hidden_.contains({as.container, as.name})) as.exported = false;
    }
    for (const auto& [claim, line] : claims_) {
      const auto type = types_.find(claim.type);
      if (const auto base = name_path(claim.base)) {
        mentions_.add(*base, Role::kImplements, type == types_.end() ? 0 : type->second, line);
      }
    }
    for (const std::string_view owner : owners_) {
      if (const auto type = types_.find(owner); type != types_.end()) {
        ++facts_.declarations[type->second - 1].methods;
      }
    }
  }

  bool make_claim(TSNode node, const Declaration& as) {
    if (source_.claim == nullptr || as.name != "_" || !is_value(as.kind)) return false;
    const auto claim = source_.claim(tree_, node);
    if (!claim || claims_.size() >= kMostDeclarations) return false;
    claims_.emplace_back(*claim, as.line);
    return true;
  }

  // Gives a method to its type; where that stands elsewhere, its name says so.
  void give_to_owner(TSNode node, const Frame& frame, Declaration& as) {
    if (source_.owner == nullptr || as.container > 0) return;
    std::string_view owner = frame.owner;
    if (owner.empty() && as.kind == DeclarationKind::kMethod) owner = source_.owner(tree_, node);
    if (owner.empty()) return;
    if (const auto type = types_.find(owner); type != types_.end()) {
      as.container = type->second;
      return;
    }
    if (as.kind == DeclarationKind::kFunction) as.kind = DeclarationKind::kMethod;
    if (as.kind == DeclarationKind::kMethod) owners_.push_back(owner);
    as.name = std::string(owner) + "." + as.name;
  }

  std::optional<std::string_view> declared_name(const Rule& rule, TSNode node, TSNode name,
                                                Frame& frame) {
    if (!ts_node_is_null(name)) add_taken_keys(rule, node, name, frame);
    if (frame.nameless && is_member(rule.rule->kind)) {
      frame.scope = rule.rule->kind == DeclarationKind::kMethod;
      return std::nullopt;
    }
    if (source_.name_of != nullptr) return source_.name_of(tree_, node, name);
    if (ts_node_is_null(name)) return std::nullopt;
    return tree_.text(name);
  }

  // "{ KEY, OTHER: name } = environment"
  void add_taken_keys(const Rule& rule, TSNode node, TSNode name, const Frame& frame) {
    if (source_.environments.empty() || !is_value(rule.rule->kind)) return;
    const TSNode value = ts_node_child_by_field_id(node, rule.value);
    if (ts_node_is_null(value) || ts_node_named_child_count(name) == 0) return;
    if (!is_environment(tree_.text(value))) return;
    TreeCursor cursor(name);
    for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
      TSNode key = cursor.node();
      for (int depth = 0; depth < 4 && ts_node_named_child_count(key) > 0; ++depth)
        key = ts_node_named_child(key, 0);
      if (const auto path = name_path(tree_.text(key)); path && ts_node_is_named(key))
        add(*path, Role::kReads, frame, SourceTree::line(key));
    }
  }

  // The child that is the name, where no field tells it.
  const void* child_at(TSNode node, std::string_view name) const {
    const auto offset = [](std::string_view text) {
      return reinterpret_cast<std::uintptr_t>(text.data());
    };
    if (offset(name) < offset(tree_.text())) return nullptr;
    const std::size_t at = offset(name) - offset(tree_.text());
    TreeCursor cursor(node);
    for (bool more = cursor.to_first_child(); more; more = cursor.to_next_sibling()) {
      const bool leaf = ts_node_child_count(cursor.node()) == 0;
      if (leaf && ts_node_start_byte(cursor.node()) == at) return cursor.node().id;
    }
    return nullptr;
  }

  bool declare_named(const Rule& rule, TSNode node, Frame& frame) {
    frame.role = Role::kUses;
    frame.errors.reset();
    const bool local = is_local(frame.holder);
    if (local && is_value(rule.rule->kind)) {
      if (ts_node_child_count(node) == 0) locals_.bind(tree_.text(node));
      return push(frame, node);
    }
    const auto named = source_.named(tree_, node, frames_.back().node, rule.rule->kind);
    if (!named || facts_.declarations.size() + 2 > kMostDeclarations) {
      if (named) ++facts_.dropped;
      frame.role = rule.rule->role.value_or(Role::kUses);
      return push(frame, node);
    }
    const bool nameless = named->node.id == nullptr && named->name.empty();
    frame.hidden |= nameless;
    if (nameless) return push(frame, node);
    // A field of a type that has no name.
    const bool member = frame.holder > 0 && is_type(facts_.declarations[frame.holder - 1].kind);
    if (named->kind == DeclarationKind::kField && !member) return push(frame, node);
    frame.name = named->node.id;
    Declaration as = declaration_of(*named, rule, node, frame);
    if (local && named->node.id != nullptr) locals_.bind(tree_.text(named->node));
    as.exported &= !local;
    const Declaration other{.kind = DeclarationKind::kAlias,
                            .name = std::string(named->other),
                            .line = as.line,
                            .last_line = as.line,
                            .container = as.container,
                            .exported = as.exported,
                            .bases = {as.name}};
    // What is written outside of its type has been counted there.
    const bool inside = as.container == frame.holder;
    take(std::move(as), frame, inside);
    if (named->open) open_ = frame.declared;
    if (!other.name.empty()) facts_.declarations.push_back(other);
    const bool pushed = push(frame, node);
    if (pushed && frame.scope) {
      for (const std::string_view word : named->words) locals_.bind(word);
    }
    return pushed;
  }

  Declaration declaration_of(const Named& named, const Rule& rule, TSNode node,
                             const Frame& frame) const {
    const bool written = named.node.id != nullptr;
    Declaration as{.kind = named.kind,
                   .name = named.name.empty() ? std::string(tree_.text(named.node)) : named.name,
                   .line = SourceTree::line(written ? named.node : node),
                   .last_line = ts_node_end_point(node).row + 1,
                   .container = frame.holder,
                   .exported = named.exported && !frame.hidden,
                   .is_abstract = named.is_abstract};
    const bool member = as.container > 0 && is_type(facts_.declarations[as.container - 1].kind);
    if (member && as.kind == DeclarationKind::kFunction) as.kind = DeclarationKind::kMethod;
    if (member && as.kind == DeclarationKind::kVariable) as.kind = DeclarationKind::kField;
    if (as.kind == DeclarationKind::kMember && as.container == open_ && open_ > 0)
      as.container = facts_.declarations[open_ - 1].container;
    const TSNode value = rule.value == 0 ? TSNode{} : ts_node_child_by_field_id(node, rule.value);
    if (is_value(as.kind) && value.id != nullptr) {
      take_value(rules_, tree_, value, ts_node_symbol(node), as);
      if (named.instance) as.size = 0;
      if (named.instance) as.shape = ValueShape::kInstance;
    }
    if (!named.aliased.empty()) as.bases.emplace_back(named.aliased);
    if (!member) find_owner(as);
    if (as.kind == DeclarationKind::kMacro) as.container = 0;  // of no namespace
    return as;
  }

  // "Type::member" where the type stands in the file, too.
  void find_owner(Declaration& as) const {
    const std::size_t joint = as.name.rfind('.');
    if (joint == std::string::npos || is_type(as.kind) || as.kind == DeclarationKind::kModule) {
      return;
    }
    if (as.kind == DeclarationKind::kFunction) as.kind = DeclarationKind::kMethod;
    std::string_view owner = std::string_view(as.name).substr(0, joint);
    auto type = types_.find(owner);
    while (type == types_.end() && owner.find('.') != std::string_view::npos) {
      owner.remove_prefix(owner.find('.') + 1);
      type = types_.find(owner);
    }
    if (type == types_.end()) return;
    as.container = type->second;
    as.name.erase(0, joint + 1);
  }

  bool declare(const Rule& rule, TSNode node, Frame& frame) {
    if (source_.named != nullptr) return declare_named(rule, node, frame);
    const TSNode name = ts_node_child_by_field_id(node, rule.name);
    frame.role = Role::kUses;
    frame.errors.reset();
    const auto text = declared_name(rule, node, name, frame);
    if (!text) {
      if (rule.rule->role) frame.role = *rule.rule->role;
      return push(frame, node);
    }
    if (text->empty() && source_.name_of != nullptr) {
      annotations_.clear();
      return false;
    }
    const auto path = name_path(*text);
    const bool qualified = source_.qualified_names || source_.namespaced_names;
    if (!path || (path->find('.') != std::string::npos && !qualified)) {
      frame.scope = is_callable(rule.rule->kind);
      if (path) count_own_field(*path, frame.holder);
      // "registry[key] = Name" puts it into a table.
      if (!path && is_value(rule.rule->kind)) frame.arguments = rule.value;
      return push(frame, node);
    }
    frame.name = ts_node_is_null(name) ? child_at(node, *text) : name.id;
    frame.names = rule.name;
    Declaration as{.kind = rule.rule->kind,
                   .name = *path,
                   .line = SourceTree::line(ts_node_is_null(name) ? node : name),
                   .last_line = ts_node_end_point(node).row + 1,
                   .container = holder_of(rule.rule->kind, frame.holder),
                   .exported = !frame.hidden};
    const bool local = is_local(as.container);
    if ((local || locals_.in_function()) && is_value(as.kind)) {
      bind_name(*text);
      return push(frame, node);
    }
    // Nothing outside of a function without a name knows those in it.
    if (local && frame.holder == 0 && as.kind == DeclarationKind::kFunction) {
      locals_.bind(*text);
      frame.scope = true;
      return push(frame, node);
    }
    if (source_.namespaced_names && text->starts_with("::")) as.container = 0;
    if (make_claim(node, as)) return false;
    if (!classify(rule, node, as)) return push(frame, node);
    if (!local) give_to_owner(node, frame, as);
    if (local) bind_name(*text);
    as.exported = !local && as.exported;
    if (facts_.declarations.size() >= kMostDeclarations) {
      ++facts_.dropped;
      return push(frame, node);
    }
    if (source_.namespaced_names) nest(as);
    take(std::move(as), frame);
    return push(frame, node);
  }

  void count_own_field(std::string_view path, std::uint32_t holder) {
    if (!source_.own_fields || holder == 0) return;
    const Declaration& method = facts_.declarations[holder - 1];
    if (method.name != source_.own_fields->method || method.container == 0) return;
    const auto dot = path.find('.');
    if (path.substr(0, dot) != source_.own_fields->object) return;
    const std::string_view name = path.substr(dot + 1);
    if (name.find('.') != std::string_view::npos) return;
    const bool first = own_fields_.emplace(method.container, name).second;
    if (first) ++facts_.declarations[method.container - 1].fields;
  }

  // The head of a method may declare a field of its type.
  std::uint32_t holder_of(DeclarationKind kind, std::uint32_t holder) const {
    const bool of_type = kind == DeclarationKind::kField && holder > 0 &&
                         is_callable(facts_.declarations[holder - 1].kind);
    return of_type ? facts_.declarations[holder - 1].container : holder;
  }

  // What stands in a function, also in one without a name, but not what stands in a type there.
  bool is_local(std::uint32_t holder) const {
    if (holder == 0) return locals_.in_function();
    const DeclarationKind kind = facts_.declarations[holder - 1].kind;
    return is_callable(kind) || (locals_.in_function() && !is_type(kind));
  }

  // "A.B" is B in the namespace A.
  void nest(Declaration& as) {
    for (std::size_t dot; (dot = as.name.find('.')) != std::string::npos;) {
      facts_.declarations.push_back({.kind = DeclarationKind::kModule,
                                     .name = as.name.substr(0, dot),
                                     .line = as.line,
                                     .last_line = as.last_line,
                                     .container = as.container});
      as.container = static_cast<std::uint32_t>(facts_.declarations.size());
      as.name.erase(0, dot + 1);
    }
  }

  bool classify(const Rule& rule, TSNode node, Declaration& as) const {
    const bool member = as.container > 0 && is_type(facts_.declarations[as.container - 1].kind);
    if (is_value(as.kind)) {
      if (as.kind == DeclarationKind::kVariable) {
        if (is_upper_case(as.name)) {
          as.kind = DeclarationKind::kConstant;
        } else if (member) {
          as.kind = DeclarationKind::kField;
        }
      }
      const TSNode value = source_.value_of != nullptr
                               ? source_.value_of(node)
                               : ts_node_child_by_field_id(node, rule.value);
      if (!ts_node_is_null(value)) take_value(rules_, tree_, value, ts_node_symbol(node), as);
    }
    if (as.kind == DeclarationKind::kFunction && member) as.kind = DeclarationKind::kMethod;
    if (source_.refine != nullptr && !source_.refine(tree_, node, as)) return false;
    as.is_abstract = source_.is_abstract != nullptr ? source_.is_abstract(tree_, node, as)
                                                    : lacks_body(node, as);
    if (source_.exported != nullptr) as.exported = source_.exported(tree_, node, as);
    return true;
  }

  bool lacks_body(TSNode node, const Declaration& as) const {
    return as.kind == DeclarationKind::kMethod && rules_.body() != 0 &&
           ts_node_is_null(ts_node_child_by_field_id(node, rules_.body()));
  }

  void take(Declaration as, Frame& frame, bool counted = true) {
    if (as.container > 0 && counted) {
      Declaration& holder = facts_.declarations[as.container - 1];
      if (as.kind == DeclarationKind::kField) ++holder.fields;
      if (as.kind == DeclarationKind::kMethod) ++holder.methods;
      if (as.kind == DeclarationKind::kMethod && as.is_abstract) ++holder.abstract_methods;
    }
    frame.scope = is_callable(as.kind);
    frame.nameless = false;
    const bool type = is_type(as.kind) && at_top(as);
    facts_.declarations.push_back(std::move(as));
    frame.declared = static_cast<std::uint32_t>(facts_.declarations.size());
    frame.owner = {};
    frame.hidden = false;
    if (type) types_.try_emplace(facts_.declarations.back().name, frame.declared);
    frame.holder = static_cast<std::uint32_t>(facts_.declarations.size());
    annotate(frame.holder);
  }

  bool at_top(const Declaration& as) const {
    return as.container == 0 ||
           (source_.qualified_names &&
            facts_.declarations[as.container - 1].kind == DeclarationKind::kModule);
  }

  // A type most of whose fields are there to be called is a contract like one with methods.
  void count_slots() {
    std::unordered_map<std::uint32_t, std::uint32_t> slots;
    for (const Declaration& as : facts_.declarations) {
      if (as.kind == DeclarationKind::kField && as.is_abstract) ++slots[as.container];
    }
    for (const auto& [container, count] : slots) {
      Declaration& type = facts_.declarations[container - 1];
      if (2 * count > type.fields) type.abstract_methods += count;
    }
  }

  const CompiledRules& rules_;
  const CodeRules& source_;
  const SourceTree& tree_;
  FileFacts& facts_;
  std::vector<Frame> frames_;
  std::unordered_set<std::string_view, SeededHash> imported_;  // functions that may be extensions
  std::uint32_t open_ = 0;  // the enumeration whose members stand beside it
  std::set<std::pair<std::uint32_t, std::string>> own_fields_;  // by type
  LocalNames locals_;
  Mentions mentions_{kMostMentions};
  std::unordered_map<std::string, std::uint32_t, SeededHash, std::equal_to<>> types_;  // at the top
  std::vector<std::pair<Claim, std::uint32_t>> claims_;  // with their lines
  std::vector<std::string_view> owners_;                 // of methods, declared elsewhere
  std::vector<std::pair<std::string, std::uint32_t>> annotations_;
  std::vector<std::string> contexts_{""};
  std::set<std::pair<std::uint32_t, std::string_view>> hidden_;  // by the type that holds them
};

}  // namespace

void read_code(const CompiledRules& rules, const SourceTree& tree, FileFacts& facts) {
  CodeWalk(rules, tree, facts).run();
}

}  // namespace kestrix::index
