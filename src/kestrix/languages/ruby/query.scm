((call method: (identifier) @require
   arguments: (argument_list . (string (string_content) @path))) @import
 (#any-of? @require "require" "require_relative") (#set! anywhere))
((call method: (identifier) @_autoload
   arguments: (argument_list . (simple_symbol) . (string (string_content) @path))) @import
 (#eq? @_autoload "autoload") (#set! anywhere))

(module name: (_) @namespace body: (_)? @members) @scope
(class name: (_) @name superclass: (_)? @superclass body: (_)? @members) @class @scope
(singleton_class body: (_) @enter)
[(begin) (if) (unless) (then) (else)] @enter

; A class that a call makes.
((assignment left: (constant) @name
   right: (call receiver: (constant) @_maker method: (identifier) @_make)) @made
 (#any-of? @_maker "Struct" "Data" "Class") (#any-of? @_make "new" "define"))
(assignment left: (constant) @name right: (_) @body) @constant
(assignment
  left: [(class_variable) (global_variable) (instance_variable) (identifier)] @name
  right: (_) @body) @variable
