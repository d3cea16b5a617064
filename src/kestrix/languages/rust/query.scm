((use_declaration) @use @import (#set! anywhere))
((extern_crate_declaration) @crate @import (#set! anywhere))

(attribute_item) @attribute
(mod_item name: (_) @name !body) @mod @import
(mod_item name: (_) @name body: (_) @enter) @inline

(macro_invocation (token_tree) @tokens)
(expression_statement (macro_invocation (token_tree) @tokens))

(impl_item body: (_) @members)
(trait_item body: (_) @members)

(struct_item name: (_) @name body: (_)? @body) @class @item
(enum_item name: (_) @name body: (_) @body) @class @item
(union_item name: (_) @name body: (_) @body) @class @item
(trait_item name: (_) @name body: (_) @body) @interface @item
(const_item name: (_) @name value: (_)? @body) @constant @item
(static_item (mutable_specifier) name: (_) @name value: (_)? @body) @variable @item
(static_item name: (_) @name value: (_)? @body) @constant @item

(function_item name: (_) @name) @item
(type_item name: (_) @name) @item
(macro_definition name: (_) @name) @item
