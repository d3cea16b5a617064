; Imports count wherever they stand.
((import_statement) @import (#set! anywhere))
((import_from_statement) @import (#set! anywhere))

; What stands at the top of a module or of a class may be conditional or guarded.
[
  (if_statement) (elif_clause) (else_clause)
  (try_statement) (except_clause) (finally_clause)
  (with_statement) (block) (decorated_definition) (expression_statement)
] @enter

(class_definition name: (identifier) @name body: (block) @body @members) @class

(assignment left: (identifier) @name right: (_)? @body) @binding
(assignment left: (pattern_list (identifier) @name) right: (_) @body) @binding
; a = b = value
(assignment right: (assignment left: (identifier) @name right: (_) @body) @binding)
