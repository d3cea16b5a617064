#include "kestrix/languages/ruby/macros.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "kestrix/languages/code/names.h"
#include "kestrix/languages/ruby/inflections.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index::ruby {
namespace {

// Of a macro so many arguments are looked at.
constexpr std::size_t kMostArguments = 200;

enum class Does : std::uint8_t {
  kNothing,
  kBody,       // its block is one more piece of the class
  kFactory,    // makes what the factory of that name does, which lies in a file called so
  kField,      // its first argument is a field
  kFields,     // each argument is
  kFunction,   // its first argument is a method
  kFunctions,  // each argument is
  kHide,       // each argument is a member that it hides
  kNamespace,  // what is in its block lies in a folder of that name
  kOne,        // a field that holds one of the class of that name
  kImport,
  kMany,      // a field that holds several
  kResource,  // a controller answers for what it names in the singular
  kResources,
  kScope,
  kStored,  // its arguments behind the first one are fields
  kStruct,  // makes a type with its arguments as fields
};

struct Macro {
  std::string_view name;
  Does does;
};

// Ascending by name.
constexpr std::array kMacros = std::to_array<Macro>({
    {"Data.define", Does::kStruct},
    {"Struct.new", Does::kStruct},
    {"alias_attribute", Does::kField},
    {"alias_method", Does::kFunction},
    {"attr", Does::kFields},
    {"attr_accessor", Does::kFields},
    {"attr_reader", Does::kFields},
    {"attr_writer", Does::kFields},
    {"attribute", Does::kField},
    {"attributes", Does::kFields},
    {"attributes_for", Does::kFactory},
    {"autoload", Does::kImport},
    {"belongs_to", Does::kOne},
    {"build", Does::kFactory},
    {"build_list", Does::kFactory},
    {"build_pair", Does::kFactory},
    {"build_stubbed", Does::kFactory},
    {"cattr_accessor", Does::kFields},
    {"cattr_reader", Does::kFields},
    {"class_attribute", Does::kFields},
    {"class_eval", Does::kBody},
    {"class_methods", Does::kBody},
    {"concerning", Does::kBody},
    {"config_accessor", Does::kFields},
    {"const", Does::kField},
    {"create", Does::kFactory},
    {"create_list", Does::kFactory},
    {"create_pair", Does::kFactory},
    {"define_method", Does::kFunction},
    {"delegate", Does::kFunctions},
    {"devise_for", Does::kMany},
    {"embedded_in", Does::kOne},
    {"embeds_many", Does::kMany},
    {"embeds_one", Does::kOne},
    {"enum", Does::kField},
    {"extend", Does::kNothing},
    {"field", Does::kField},
    {"has_and_belongs_to_many", Does::kMany},
    {"has_many", Does::kMany},
    {"has_many_attached", Does::kField},
    {"has_one", Does::kOne},
    {"has_one_attached", Does::kField},
    {"has_rich_text", Does::kField},
    {"include", Does::kNothing},
    {"included", Does::kBody},
    {"many_to_many", Does::kMany},
    {"many_to_one", Does::kOne},
    {"mattr_accessor", Does::kFields},
    {"mattr_reader", Does::kFields},
    {"module_function", Does::kNothing},
    {"namespace", Does::kNamespace},
    {"one_to_many", Does::kMany},
    {"one_to_one", Does::kOne},
    {"option", Does::kField},
    {"param", Does::kField},
    {"preference", Does::kField},
    {"prepend", Does::kNothing},
    {"prepended", Does::kBody},
    {"private", Does::kHide},
    {"private_class_method", Does::kHide},
    {"private_constant", Does::kHide},
    {"prop", Does::kField},
    {"property", Does::kField},
    {"protected", Does::kHide},
    {"public", Does::kNothing},
    {"raise", Does::kNothing},
    {"require", Does::kImport},
    {"require_relative", Does::kImport},
    {"resource", Does::kResource},
    {"resources", Does::kResources},
    {"scope", Does::kScope},
    {"setting", Does::kField},
    {"store_accessor", Does::kStored},
    {"thread_cattr_accessor", Does::kFields},
    {"thread_mattr_accessor", Does::kFields},
    {"with_options", Does::kBody},
});
static_assert(std::ranges::is_sorted(kMacros, {}, &Macro::name));

struct Arguments {
  struct Option {
    std::string_view key;
    TSNode value;
  };

  std::vector<TSNode> names;  // symbols, strings and whatever else is no option
  std::vector<Option> options;

  const TSNode* option(std::string_view key) const {
    const auto found = std::ranges::find(options, key, &Option::key);
    return found == options.end() ? nullptr : &found->value;
  }
};

Arguments arguments_of(const SourceTree& tree, TSNode call) {
  Arguments arguments;
  const auto list = field_of(call, "arguments");
  if (!list) return arguments;
  std::size_t looked = 0;
  for_each_child(*list, [&](TSNode argument, std::string_view) {
    if (++looked > kMostArguments) return;
    if (type_of(argument) != "pair") return arguments.names.push_back(argument);
    const auto key = field_of(argument, "key");
    const auto value = field_of(argument, "value");
    if (key && value) arguments.options.push_back({tree.text(*key), *value});
  });
  return arguments;
}

bool is_literal(TSNode node) {
  const std::string_view type = type_of(node);
  return type == "simple_symbol" || type == "string";
}

std::string_view word(const SourceTree& tree, TSNode node) {
  return is_literal(node) ? literal_content(tree.text(node)) : std::string_view();
}

void add_members(const Arguments& arguments, DeclarationKind kind, std::size_t first,
                 std::size_t most, MacroNotes& notes) {
  for (std::size_t at = first; at < arguments.names.size() && at < most; ++at) {
    if (is_literal(arguments.names[at])) notes.members.push_back({kind, arguments.names[at]});
  }
}

void hide(const SourceTree& tree, const Arguments& arguments, MacroNotes& notes) {
  notes.quiet = true;
  for (const TSNode argument : arguments.names) {
    const std::string_view type = type_of(argument);
    if (type == "method" || type == "singleton_method") {
      if (const auto name = field_of(argument, "name")) notes.hidden.push_back(tree.text(*name));
    } else if (const auto name = word(tree, argument); !name.empty()) {
      notes.hidden.push_back(name);
    }
  }
}

void mention_type(std::string_view name, MacroNotes& notes) {
  if (!name.empty() && name.size() < kLongestMention && name_path(name))
    notes.mentions.emplace_back(std::string("::").append(name), Role::kString);
}

// The class that an association leads to, by option or by the name that it has.
void associate(const SourceTree& tree, const Arguments& arguments, bool many, MacroNotes& notes) {
  add_members(arguments, DeclarationKind::kField, 0, 1, notes);
  if (arguments.names.empty() || arguments.option("polymorphic") != nullptr) return;
  for (const std::string_view key : {"class_name", "class"}) {
    const TSNode* named = arguments.option(key);
    if (named == nullptr) continue;
    const auto name = word(tree, *named);
    return mention_type(name.substr(name.find_first_not_of(':') == 2 ? 2 : 0), notes);
  }
  const TSNode* source = arguments.option("source");
  const auto name = word(tree, source != nullptr ? *source : arguments.names.front());
  if (!many) mention_type(class_name(name), notes);
  for (const std::string& one : many ? singulars(name) : std::vector<std::string>())
    mention_type(class_name(one), notes);
}

void route(const SourceTree& tree, const Arguments& arguments, bool many, MacroNotes& notes) {
  const auto add = [&](std::string name) {
    if (!name.empty() && name_path(name) && name.size() < kLongestMention / 2)
      notes.mentions.emplace_back(std::string(notes.around) + name + "#", Role::kString);
  };
  if (const TSNode* controller = arguments.option("controller")) {
    return add(std::string(word(tree, *controller)));
  }
  for (const TSNode argument : arguments.names) {
    const auto name = word(tree, argument);
    if (!name.empty()) add(many ? std::string(name) : plural(name));
  }
}

// By FactoryBot's convention one of a model's factories lies in a file that is called like it.
void make_by_factory(const SourceTree& tree, const Arguments& arguments, MacroNotes& notes) {
  if (arguments.names.empty() || type_of(arguments.names.front()) != "simple_symbol") return;
  const auto name = word(tree, arguments.names.front());
  if (name.empty() || name.size() > kLongestMention / 2) return;
  for (const std::string& file : {std::string(name), plural(name), std::string(name) + "_factory"})
    notes.mentions.emplace_back("factories/" + file, Role::kString);
}

void enter_folder(std::string_view folder, MacroNotes& notes) {
  if (folder.empty() || folder.size() + notes.around.size() > kLongestMention / 2) return;
  notes.inside = std::string(notes.around).append(folder) + "/";
}

// Of a model a query, of routes what they have in common.
void scope(const SourceTree& tree, const Arguments& arguments, MacroNotes& notes) {
  if (const TSNode* module = arguments.option("module")) {
    return enter_folder(word(tree, *module), notes);
  }
  add_members(arguments, DeclarationKind::kMethod, 0, 1, notes);
}

void enter_namespace(const SourceTree& tree, const Arguments& arguments, MacroNotes& notes) {
  if (arguments.names.empty()) return;
  const TSNode* module = arguments.option("module");
  enter_folder(word(tree, module != nullptr ? *module : arguments.names.front()), notes);
}

}  // namespace

void note_macro(const SourceTree& tree, TSNode call, std::string_view callee, MacroNotes& notes) {
  const auto found = std::ranges::lower_bound(kMacros, callee, {}, &Macro::name);
  if (found == kMacros.end() || found->name != callee) return;
  const Arguments arguments = arguments_of(tree, call);
  constexpr std::size_t kAll = kMostArguments;
  switch (found->does) {
    case Does::kNothing:
      notes.quiet = true;
      return;
    case Does::kBody:
      notes.body = true;
      notes.quiet = true;
      return;
    case Does::kField:
      return add_members(arguments, DeclarationKind::kField, 0, 1, notes);
    case Does::kFields:
      notes.quiet = true;
      return add_members(arguments, DeclarationKind::kField, 0, kAll, notes);
    case Does::kFunction:
      notes.quiet = true;
      return add_members(arguments, DeclarationKind::kMethod, 0, 1, notes);
    case Does::kFunctions:
      return add_members(arguments, DeclarationKind::kMethod, 0, kAll, notes);
    case Does::kFactory:
      return make_by_factory(tree, arguments, notes);
    case Does::kHide:
      return hide(tree, arguments, notes);
    case Does::kImport:
      notes.skip = true;
      return;
    case Does::kNamespace:
      return enter_namespace(tree, arguments, notes);
    case Does::kOne:
      return associate(tree, arguments, false, notes);
    case Does::kMany:
      return associate(tree, arguments, true, notes);
    case Does::kResource:
      return route(tree, arguments, false, notes);
    case Does::kResources:
      return route(tree, arguments, true, notes);
    case Does::kScope:
      return scope(tree, arguments, notes);
    case Does::kStored:
      return add_members(arguments, DeclarationKind::kField, 1, kAll, notes);
    case Does::kStruct:
      if (notes.of_type) add_members(arguments, DeclarationKind::kField, 0, kAll, notes);
      return;
  }
}

}  // namespace kestrix::index::ruby
