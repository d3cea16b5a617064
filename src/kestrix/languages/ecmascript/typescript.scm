; inherits: common

(abstract_class_declaration name: (_) @name body: (class_body) @body @members) @class
(enum_declaration name: (_) @name body: (_) @body) @class
(interface_declaration name: (_) @name body: (_) @body) @interface

; Namespaces, declare module, declare global.
(ambient_declaration) @enter
(ambient_declaration (statement_block) @enter)
(internal_module body: (statement_block) @enter)
(expression_statement (internal_module body: (statement_block) @enter))
(module body: (statement_block) @enter)

(public_field_definition
  "static" "readonly" name: (property_identifier) @name value: (_)? @body) @constant
(public_field_definition name: (property_identifier) @name value: (_)? @body) @binding
