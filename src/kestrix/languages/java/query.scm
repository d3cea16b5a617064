(package_declaration [(identifier) (scoped_identifier)] @import) @package
(import_declaration) @import

[
  (class_declaration name: (identifier) @name body: (_) @body @members)
  (enum_declaration name: (identifier) @name body: (_) @body @members)
  (record_declaration name: (identifier) @name body: (_) @body @members)
] @class
[
  (interface_declaration name: (identifier) @name body: (_) @body @members)
  (annotation_type_declaration name: (identifier) @name body: (_) @body @members)
] @interface
(enum_body_declarations) @enter

(field_declaration declarator: (variable_declarator name: (identifier) @name)) @field
(constant_declaration declarator: (variable_declarator name: (identifier) @name)) @constant
