(namespace_definition name: (_) @package @import)
(namespace_definition body: (_) @enter)
(namespace_use_declaration) @use @import

; Inclusions count wherever they stand.
([
  (require_expression) (require_once_expression) (include_expression) (include_once_expression)
] @inclusion (#set! anywhere))

; Declarations may be conditional.
[(if_statement) (else_clause) (compound_statement) (colon_block)] @enter

[
  (class_declaration name: (name) @name body: (_) @body @members)
  (trait_declaration name: (name) @name body: (_) @body @members)
  (enum_declaration name: (name) @name body: (_) @body @members)
] @class
(interface_declaration name: (name) @name body: (_) @body @members) @interface
(function_definition name: (name) @function)

(const_declaration (const_element . (name) @name (_) @body)) @constant
((expression_statement
   (function_call_expression function: (name) @_callee
     arguments: (arguments . (argument (string (string_content) @name)))) @constant)
 (#eq? @_callee "define"))
(property_declaration
  (property_element name: (variable_name (name) @name) default_value: (_)? @body)) @variable
(expression_statement
  (assignment_expression left: (variable_name (name) @name) right: (_) @body) @binding)
