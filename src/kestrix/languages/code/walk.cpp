#include "kestrix/languages/code/walk.h"

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "kestrix/languages/code/call_reader.h"
#include "kestrix/languages/code/declaration_reader.h"
#include "kestrix/languages/code/frame.h"
#include "kestrix/languages/code/mention_reader.h"
#include "kestrix/languages/code/names.h"
#include "kestrix/languages/code/path_reader.h"
#include "kestrix/languages/code/setting_reader.h"
#include "kestrix/languages/code/walk_state.h"
#include "kestrix/languages/symbols.h"
#include "kestrix/syntax/tree_cursor.h"

namespace kestrix::index {
namespace {

using Rule = CompiledRules::Rule;

constexpr std::size_t kMostBases = 64;  // of one type

// Of "name = value" the name: of a parameter, which belongs to what is called.
const void* label_of(TSNode entry) {
  const TSNode label = ts_node_child(entry, 0);
  const TSNode next = ts_node_child(entry, 1);
  if (ts_node_is_null(next) || ts_node_child_count(label) > 0) return nullptr;
  return std::string_view(ts_node_type(next)) == "=" ? label.id : nullptr;
}

class CodeWalk {
 public:
  CodeWalk(const CompiledRules& rules, const SourceTree& tree, FileFacts& facts)
      : walk_(rules, tree, facts) {}

  void run() {
    TreeCursor cursor(walk_.tree.root());
    walk_.frames.push_back(
        {.node = walk_.tree.root(), .symbol = ts_node_symbol(walk_.tree.root())});
    if (!cursor.to_first_child()) return;
    for (;;) {
      if (enter(cursor.node(), cursor.field_id())) {
        cursor.to_first_child();
        continue;
      }
      while (!cursor.to_next_sibling()) {
        if (walk_.frames.size() == 1) return finish();
        cursor.to_parent();
        walk_.pop();
      }
    }
  }

 private:
  // Whether the node's children are to be walked over; their frame is pushed then.
  bool enter(TSNode node, TSFieldId field) {
    if (!ts_node_is_named(node) && ts_node_child_count(node) == 0) return false;
    const Rule* rule = walk_.rules.find(ts_node_symbol(node), walk_.frames.back().symbol, field);
    Frame frame = frame_below(walk_.frames.back(), node, field);
    if (declarations_.is_further_name(walk_.frames.back(), node, field)) return false;
    if (node.id == walk_.frames.back().object) return false;
    if (node.id == walk_.frames.back().name &&
        (rule == nullptr || rule->rule->act != Act::kDeclare)) {
      return false;
    }
    if (rule == nullptr) {
      frame.role = beyond(frame.role);
      return walk_.push(frame, node);
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
    return !rule.in_type || (!walk_.locals.in_function() && frame.holder > 0 &&
                             is_type(walk_.facts.declarations[frame.holder - 1].kind));
  }

  bool visit(const Rule& rule, TSNode node, Frame& frame) {
    switch (rule.rule->act) {
      case Act::kSkip:
      case Act::kScalar:
        return false;
      case Act::kName:
      case Act::kProperName:
      case Act::kSection:
        visit_name(rule, node, frame);
        return false;
      case Act::kToken:
        paths_.visit_token(node, frame);
        return false;
      case Act::kBind:
      case Act::kBindBehind:
      case Act::kBindType:
      case Act::kPattern:
        visit_bound(rule, node, frame);
        return false;
      case Act::kPath:
        return paths_.visit_path(node, frame);
      case Act::kTypePath:
        mentions_.mention(node, paths_.text_of_type(node), frame);
        break;
      case Act::kGeneric:
        return paths_.visit_generic(rule, node, frame);
      case Act::kCall:
      case Act::kConstruct:
      case Act::kSubscript:
        return calls_.visit_call(rule, node, frame);
      case Act::kLiteral:
        return calls_.visit_literal(rule, node, frame);
      case Act::kDeclare:
        return declarations_.declare(rule, node, frame);
      case Act::kKey:
        if (frame.keyed) return false;
        break;
      case Act::kString:
        mentions_.add_string(node, frame);
        frame.role = Role::kUses;
        break;
      default:
        set_below(rule, node, frame);
    }
    return walk_.push(frame, node);
  }

  void visit_name(const Rule& rule, TSNode node, const Frame& frame) {
    const std::string_view name = walk_.tree.text(node);
    if (rule.rule->act == Act::kProperName && starts_in_lower_case(name)) return;
    if (rule.rule->act == Act::kSection) {
      if (const auto hidden = walk_.source.hides(name)) {
        walk_.frames.back().hidden = *hidden;
        return;
      }
    }
    mentions_.mention(node, name, frame);
  }

  void visit_bound(const Rule& rule, TSNode node, Frame& frame) {
    const std::string_view name = walk_.tree.text(node);
    switch (rule.rule->act) {
      case Act::kBindBehind:
        walk_.frames.back().binds = node;
        return;
      case Act::kBindType:
        return walk_.bind_to_declaration(node);
      case Act::kPattern:
        if (starts_in_lower_case(name)) return walk_.locals.bind(name);
        mentions_.mention(node, name, frame);
        return;
      default:
        if (walk_.source.injected != nullptr && walk_.source.injected(walk_.tree, node)) {
          frame.role = Role::kUses;
          mentions_.mention(node, name, frame);
        }
        walk_.bind(node);
    }
  }

  // What a node says of nothing but what stands below it.
  void set_below(const Rule& rule, TSNode node, Frame& frame) const {
    switch (rule.rule->act) {
      case Act::kMembers:
        return declarations_.enter_members(node, frame);
      case Act::kEntry:
        frame.name = label_of(node);
        [[fallthrough]];
      case Act::kTable:
        if (!is_of(frame.role, {Role::kCatches, Role::kType, Role::kExtends, Role::kThrows}))
          frame.role = Role::kLists;
        return;
      case Act::kInfix:
        frame.callee = ts_node_named_child(node, 1).id;
        frame.argument_role = frame.role;
        return;
      case Act::kScope:
        frame.scope = true;
        frame.of_type = true;
        return;
      case Act::kFunctionValue:
        frame.scope = !walk_.frames.back().body;
        // What a function throws that is no more than an expression makes what is thrown.
        if (frame.role != Role::kThrows) frame.role = Role::kUses;
        frame.errors.reset();
        return;
      case Act::kTypeArguments:
        frame.member = false;
        frame.role = paths_.role_of_type_arguments(node, frame.role);
        return;
      case Act::kMember:
        frame.member = true;
        return;
      case Act::kNameless:
        frame.nameless = true;
        return;
      default:
        return;
    }
  }

  void finish() {
    mentions_.annotate(0);
    settle();
    count_slots();
    if (walk_.source.hidden != nullptr) {
      for (const Mention& found : walk_.source.hidden(walk_.tree, walk_.facts.declarations))
        mentions_.add_hidden(found);
    }
    mentions_.hand_over();
    add_bases();
    if (walk_.source.finish == nullptr) return;
    walk_.source.finish(walk_.facts);
    order_mentions(walk_.facts.mentions);
  }

  // What is said of types that are declared further down.
  void settle() {
    for (Declaration& as : walk_.facts.declarations) {
      if (walk_.hidden.empty()) break;
      if (walk_.hidden.contains({as.container, as.name})) as.exported = false;
    }
    for (const auto& [claim, line] : walk_.claims) {
      const auto type = walk_.types.find(claim.type);
      mentions_.add_claim(claim, type == walk_.types.end() ? 0 : type->second, line);
    }
    for (const std::string_view owner : walk_.owners) {
      if (const auto type = walk_.types.find(owner); type != walk_.types.end()) {
        ++walk_.facts.declarations[type->second - 1].methods;
      }
    }
  }

  // A type most of whose fields are there to be called is a contract like one with methods.
  void count_slots() {
    std::unordered_map<std::uint32_t, std::uint32_t> slots;
    for (const Declaration& as : walk_.facts.declarations) {
      if (as.kind == DeclarationKind::kField && as.is_abstract) ++slots[as.container];
    }
    for (const auto& [container, count] : slots) {
      Declaration& type = walk_.facts.declarations[container - 1];
      if (2 * count > type.fields) type.abstract_methods += count;
    }
  }

  void add_bases() {
    for (const Mention& mention : walk_.facts.mentions) {
      if (mention.role > Role::kImplements || mention.within == 0) continue;
      Declaration& type = walk_.facts.declarations[mention.within - 1];
      // Of what is no type: those of the types without a name in it.
      const bool kept = is_type(type.kind) || walk_.source.members_in_scope;
      if (!kept) continue;
      if (type.bases.size() < kMostBases)
        type.bases.push_back(mention.name);
      else
        ++walk_.facts.dropped;
    }
  }

  WalkState walk_;
  MentionReader mentions_{walk_};
  SettingReader settings_{walk_, mentions_};
  PathReader paths_{walk_, mentions_, settings_};
  DeclarationReader declarations_{walk_, mentions_, settings_};
  CallReader calls_{walk_, mentions_, settings_, declarations_};
};

}  // namespace

void read_code(const CompiledRules& rules, const SourceTree& tree, FileFacts& facts) {
  CodeWalk(rules, tree, facts).run();
}

}  // namespace kestrix::index
