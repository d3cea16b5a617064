; What JavaScript and TypeScript have in common; javascript.scm and typescript.scm inherit it.

((import_statement) @import (#set! anywhere))
(export_statement source: (string)) @import
(export_statement "default"? @default !source) @export
(export_statement) @enter

; import("x"), typeof import("x") and require("x"), with what they are bound to.
((variable_declarator
   name: (_) @bind
   value: (call_expression
            function: (identifier) @_require
            arguments: (arguments . [(string) (template_string)] @module)))
 (#eq? @_require "require") (#set! anywhere))
((variable_declarator
   name: (_) @bind
   value: (await_expression
            (call_expression
              function: (import) @dynamic
              arguments: (arguments . [(string) (template_string)] @module))))
 (#set! anywhere))
((variable_declarator
   name: (_) @bind
   value: (member_expression
            object: (call_expression
                      function: (identifier) @_require
                      arguments: (arguments . [(string) (template_string)] @module))
            property: (property_identifier) @member))
 (#eq? @_require "require") (#set! anywhere))
((member_expression
   object: (call_expression
             function: (identifier) @_require
             arguments: (arguments . [(string) (template_string)] @module))
   property: (property_identifier) @member)
 (#eq? @_require "require") (#set! anywhere))
((assignment_expression
   left: (member_expression) @assigned
   right: (call_expression
            function: (identifier) @_require
            arguments: (arguments . [(string) (template_string)] @module)))
 (#eq? @_require "require") (#set! anywhere))
((pair
   key: (property_identifier) @key
   value: (call_expression
            function: (identifier) @_require
            arguments: (arguments . [(string) (template_string)] @module)))
 (#eq? @_require "require") (#set! anywhere))
((spread_element
   (call_expression
     function: (identifier) @_require
     arguments: (arguments . [(string) (template_string)] @module))) @spread
 (#eq? @_require "require") (#set! anywhere))
((call_expression
   function: (identifier) @_require
   arguments: (arguments . [(string) (template_string)] @module))
 (#eq? @_require "require") (#set! anywhere))
((call_expression
   function: (import) @dynamic
   arguments: (arguments . [(string) (template_string)] @module))
 (#set! anywhere))

; import.meta.glob("./x/*") of bundlers: all files that match.
((call_expression
   function: (member_expression) @glob
   arguments: (arguments . [(string) @module (array (string) @module)]))
 (#eq? @glob "import.meta.glob") (#set! anywhere))

; module.exports = …, exports.name = …, exports = module.exports = …
(expression_statement (assignment_expression) @exports)
(variable_declaration
  (variable_declarator name: (identifier) @name value: (assignment_expression) @exports))
(lexical_declaration
  (variable_declarator name: (identifier) @name value: (assignment_expression) @exports))

(class_declaration name: (_) @name body: (class_body) @body @members) @class
(lexical_declaration
  (variable_declarator
    name: (identifier) @name
    value: (class body: (class_body) @body @members)) @class)

(lexical_declaration
  kind: "const"
  (variable_declarator name: (identifier) @name value: (_)? @body) @constant)
(lexical_declaration
  kind: "let"
  (variable_declarator name: (identifier) @name value: (_)? @body) @binding)
(variable_declaration
  (variable_declarator name: (identifier) @name value: (_)? @body) @binding)
