(using_directive) @using @import
(namespace_declaration name: (_) @name body: (_) @enter) @namespace
(file_scoped_namespace_declaration name: (_) @name) @namespace

[
  (class_declaration name: (identifier) @name body: (_) @body @members)
  (struct_declaration name: (identifier) @name body: (_) @body @members)
  (record_declaration name: (identifier) @name body: (_) @body @members)
  (class_declaration !body name: (identifier) @name)
  (struct_declaration !body name: (identifier) @name)
  (record_declaration !body name: (identifier) @name)
  (enum_declaration name: (identifier) @name body: (_) @body)
] @class
(interface_declaration name: (identifier) @name body: (_) @body @members) @interface
(interface_declaration !body name: (identifier) @name) @interface
(delegate_declaration name: (identifier) @name) @delegate

(field_declaration
  (variable_declaration (variable_declarator name: (identifier) @name))) @field
(property_declaration name: (identifier) @name accessors: (accessor_list) @accessors) @property
((method_declaration name: (identifier) @method
   parameters: (parameter_list . (parameter (modifier) @_this)))
 (#eq? @_this "this"))
; The grammar takes a block of extension members for a constructor with functions in its body.
((constructor_declaration name: (identifier) @_block
   body: (block (local_function_statement name: (identifier) @method)))
 (#eq? @_block "extension"))
