#pragma once

#include <tree_sitter/api.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/facts/declaration.h"
#include "kestrix/facts/facts.h"
#include "kestrix/facts/reference_role.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// What the walk over a file does at a node.
enum class Act : std::uint8_t {
  kPass,           ///< sets the role, if the rule has one, and walks on
  kSkip,           ///< nothing below counts: import statements, the member part of a path
  kName,           ///< one name, mentioned in the role in force
  kProperName,     ///< the same, if it starts in upper case
  kPath,           ///< names joined ("a.b.C"): one mention if it is nothing else, else walked into
  kTypePath,       ///< the same of a type, whose arguments may follow: the names, then these
  kBind,           ///< a name, or a list of names, local to the function from here on
  kBindBehind,     ///< the same, from where the node's parent ends
  kBindType,       ///< a parameter of the type or function that is being declared
  kString,         ///< a string literal
  kScalar,         ///< another literal
  kTable,          ///< a literal list, map or array; its elements are listed
  kEntry,          ///< a pair or tuple of a table: as transparent as the table itself
  kCall,           ///< a call: the callee in field `name`, arguments in field `value`; where what
                   ///< it is a member of stands by itself, in field `object`
  kConstruct,      ///< the like of "new": the type in field `name`, arguments in field `value`
  kInfix,          ///< "a f b": calls what stands between, its operands are what they are around
  kSubscript,      ///< "base[key]": as a call, but nothing is called
  kFunctionValue,  ///< a lambda: what holds it is a function
  kMember,         ///< the name of a member: none itself, but its type arguments count
  kTypeArguments,  ///< arguments of a type where one stands, else of a value
  kGeneric,        ///< a name in field `name` with its type arguments in field `value`; it may end
                   ///< a path that could not be taken as a whole
  kScope,          ///< names bound below are its own; it is no function
  kLiteral,        ///< a value written with its type in field `name`, its elements in `value`
  kKey,            ///< a key of such a value: names a member of the type, or is an element, too
  kToken,          ///< a word among tokens: one mention with the path that it starts
  kPattern,        ///< a name in a pattern: binds in lower case, else it is mentioned
  kSection,        ///< a word that may hide the members behind it, as `hides` has it, else a name
  kMembers,        ///< members of the type that `owner` tells, which is declared elsewhere
  kNameless,       ///< a type without a name: its members are none of the one around it
  kDeclare,        ///< declares `kind` under the name in field `name`, with the value in `value`
};

/// What the walk does at nodes of a type; of several rules that fit a node the first one counts.
struct CodeRule {
  std::string_view node{};    ///< the type as the grammar names it; "" for any
  std::string_view parent{};  ///< only directly in a node of that type
  std::string_view field{};   ///< only in that field
  Act act = Act::kPass;
  std::optional<Role> role{};  ///< for the names below, until another rule says otherwise
  DeclarationKind kind = DeclarationKind::kClass;  ///< of kDeclare
  std::string_view name = "name";
  std::string_view value = "value";
  std::string_view object{};
  std::optional<Role> errors{};  ///< for those of the names below that `is_error` knows
  bool weak = false;             ///< `role` counts only where nothing more is known than a use
  bool keeps_lists = false;      ///< and nothing but that something is listed
  bool in_type = false;          ///< `role` counts only among the members of a type, of bare names
  bool ahead = false;  ///< stands before the declaration that it belongs to: decorators, attributes
  /// Tells the role from the node, where its type does not; null: `role` holds.
  std::optional<Role> (*ask)(TSNode node) = nullptr;
};

/// A call that says more than that it calls.
struct CallRule {
  std::string_view callee;  ///< "isinstance", "os.getenv": all of the path, or its end after a "."
  Role role;                ///< of its arguments; kReads: its first string is the key
  bool bare = false;        ///< only without an object: a macro of the type around it
  bool first = false;       ///< only of its first argument
  bool sole = false;        ///< only where there is no second one
};

/// That a type satisfies another one.
struct Claim {
  std::string_view type;
  std::string_view base;
};

/// What the call of a macro in the body of a type says: which members it makes, whom it mentions.
struct MacroNotes {
  struct Member {
    DeclarationKind kind;
    TSNode name;  ///< a name, or a literal of one
  };

  std::string_view around{};  ///< asked with: what the macros around it say in `inside`
  bool of_type = false;       ///< asked with: whether the call itself makes the type around it

  std::vector<Member> members{};
  std::vector<std::pair<std::string, Role>> mentions{};
  std::vector<std::string_view> hidden{};  ///< members of the type that nobody else reaches
  std::optional<std::string> inside{};     ///< for the macros and strings in its block
  bool quiet = false;                      ///< its own name says nothing
  bool skip = false;                       ///< nothing in it counts: an import
  bool body = false;                       ///< its block is another piece of the type's body
};

/// What a node declares, where that is more than its fields show. Without any name: that what
/// stands in it is out of the reach of other files.
struct Named {
  TSNode node{};       ///< the name, if it stands directly in the declaration
  std::string name{};  ///< qualified where it is written so; "": the text of `node`
  DeclarationKind kind = DeclarationKind::kClass;
  bool exported = true;
  bool is_abstract = false;  ///< declared without a body or value; of a field: to be called
  bool instance = false;     ///< a literal list makes one value rather than a table
  bool open = false;         ///< of an enumeration: its members stand beside it
  std::string_view other{};  ///< a second name for it
  std::vector<std::string_view> words{};  ///< written where names stand, but none
  std::string_view aliased{};  ///< of an alias: the type that it is just another name for
};

/// How a type says what its values hold, where it has no other way: by what a method gives to the
/// object itself.
struct OwnFields {
  std::string_view object;  ///< "self"
  std::string_view method;  ///< "__init__"
};

/// How the declarations and mentions of a language are found in its trees: data, and the few
/// questions that need code.
struct CodeRules {
  std::span<const CodeRule> rules;
  std::span<const CallRule> calls{};
  /// "this", "super": their members are no names. Where members are in scope, those of the first
  /// one are what its type holds.
  std::span<const std::string_view> self{};
  std::optional<OwnFields> own_fields{};
  /// Those of them whose members are what the type around the place has, where members are not in
  /// scope: a call of one mentions "@name".
  std::span<const std::string_view> own{};
  char variables = '\0';  ///< what starts each variable's name, so that none hides another's
  /// Bases through which the environment is read by subscript or member: "process.env", "ENV".
  std::span<const std::string_view> environments{};
  /// Whether what follows a key there is none of it, but something of the text that it holds.
  bool flat_environments = false;
  /// Calls that make a table of their arguments: "List.of".
  std::span<const std::string_view> tables{};
  /// Objects whose methods, called without more, read the setting of that name.
  std::span<const std::string_view> settings{};
  /// Ends of what gives settings by subscript alone: "Configuration".
  std::span<const std::string_view> keyed_settings{};
  /// Methods that make a value of the type that they are called on: "new".
  std::span<const std::string_view> makers{};
  /// Whether types and constants, and nothing else, start in upper case: only a path of them
  /// stands before the name of what is called of it, and one that leads nowhere is from outside.
  bool capital_types = false;
  /// Words that make the string behind them, in what annotates, the key of a setting: "env".
  std::span<const std::string_view> key_words{};
  /// Whether of a type and a function of its own that makes what is thrown, the type is thrown.
  bool thrown_types = false;
  /// Whether a path that starts in lower case and leads nowhere is one from outside.
  bool paths_outside = false;
  /// Calls that only wrap a table, of which they are called or which they are given: "freeze".
  std::span<const std::string_view> wrappers{};
  /// Whether "A::B" is declared as B in the namespace A.
  bool namespaced_names = false;
  /// Whether what is called as a member may be declared outside of the type of its object, without
  /// an import of its name. Such a call mentions ":name".
  bool open_calls = false;
  /// Whether the members of the type around a place are known there by their names alone.
  bool members_in_scope = false;
  /// Whether a function may be called by a name that a variable nearer by has, too.
  bool functions_apart = false;
  /// Whether a function that is imported may be called as if it were a member.
  bool extensions = false;
  /// Whether a declaration may be written with what it belongs to ("Type::member").
  bool qualified_names = false;
  /// Whether what a file only declares may be defined in another one.
  bool defined_elsewhere = false;
  /// Whether a declaration without a name holds members of the type that `owner` tells.
  bool extends_types = false;
  /// What a node of a rule for `kind` declares; `parent` is the node around it. None: nothing.
  /// Null: the rule's fields tell.
  std::optional<Named> (*named)(const SourceTree& tree, TSNode declaration, TSNode parent,
                                DeclarationKind kind) = nullptr;
  /// Whether a name stands for an error, as the language's habits have it.
  bool (*is_error)(std::string_view name, Role role) = nullptr;
  /// Whether the keys of a literal name members of its type rather than values.
  bool (*keyed_by_member)(TSNode literal) = nullptr;
  /// The type that a method, or the members below a node, belong to; "" for none.
  std::string_view (*owner)(const SourceTree& tree, TSNode node) = nullptr;
  /// The role of types that are arguments, where `role` is that of what they are given to.
  Role (*type_arguments)(const SourceTree& tree, TSNode list, Role role) = nullptr;
  /// What a variable without a name says: that a type implements another; null: nothing.
  std::optional<Claim> (*claim)(const SourceTree& tree, TSNode variable) = nullptr;
  /// Whether other files can reach a declaration; null: all but those that sections hide.
  bool (*exported)(const SourceTree& tree, TSNode declaration, const Declaration& as) = nullptr;
  /// Whether a type or method says that it is abstract; null: methods without a "body".
  bool (*is_abstract)(const SourceTree& tree, TSNode declaration, const Declaration& as) = nullptr;
  /// What is declared, where not the text of the field `name` says it: the name; "" for what is
  /// an import, of which nothing counts; none where nothing is declared. `name` may be null.
  std::optional<std::string_view> (*name_of)(const SourceTree& tree, TSNode node,
                                             TSNode name) = nullptr;
  /// Whether what a kConstruct makes is a value of a type of its own, written there.
  bool (*makes_type)(TSNode construct) = nullptr;
  /// The key that a string says where settings are read ("${key:default}"); null: all of it.
  std::string_view (*key_of)(std::string_view content) = nullptr;
  /// Whether a word in the body of a type hides or shows the members behind it; none: neither.
  std::optional<bool> (*hides)(std::string_view word) = nullptr;
  /// Notes what the call of `callee` says besides.
  void (*macro)(const SourceTree& tree, TSNode call, std::string_view callee,
                MacroNotes& notes) = nullptr;
  /// Whether a bound name is a parameter that is filled with what another file declares under that
  /// name; null: none is.
  bool (*injected)(const SourceTree& tree, TSNode bound) = nullptr;
  /// Last look at a declaration before it is taken, to correct its kind or name; false drops it.
  bool (*refine)(const SourceTree& tree, TSNode declaration, Declaration& as) = nullptr;
  /// The initial value of a variable, where it is in no field.
  TSNode (*value_of)(TSNode variable) = nullptr;
  /// Mentions that stand in the text, but not in the tree.
  std::vector<Mention> (*hidden)(const SourceTree& tree,
                                 std::span<const Declaration> declarations) = nullptr;
  /// Last look at all that was read of a file.
  void (*finish)(FileFacts& facts) = nullptr;
};

/// The rules of one language, bound to its grammar. Immutable, shared by all threads.
class CompiledRules {
 public:
  struct Rule {
    TSSymbol parent = 0;  ///< 0: any
    TSFieldId field = 0;  ///< 0: any
    TSFieldId name = 0;   ///< 0: none such in the grammar
    TSFieldId value = 0;
    TSFieldId object = 0;
    const CodeRule* rule = nullptr;
  };

  /// Throws Error that names `language` and the rule when the grammar has no such node or field.
  CompiledRules(const TSLanguage* grammar, const CodeRules& rules, std::string_view language);

  /// The rule for a node of type `node` in field `field` of a node of type `parent`; null for none.
  const Rule* find(TSSymbol node, TSSymbol parent, TSFieldId field) const;
  const CodeRules& source() const { return *source_; }
  TSFieldId body() const { return body_; }

 private:
  const CodeRules* source_;
  TSFieldId body_ = 0;
  std::vector<std::vector<Rule>> by_node_;
  std::vector<std::vector<Rule>> by_parent_;  // rules for any node
};

}  // namespace kestrix::index
