; What stands in a conditional, a namespace, a linkage block or behind template parameters counts as
; standing outside of it.
[
  (preproc_if) (preproc_ifdef) (preproc_elif) (preproc_elifdef) (preproc_else)
  (linkage_specification) (declaration_list) (namespace_definition) (template_declaration)
] @enter

(class_specifier body: (_) @members) @type
(struct_specifier body: (_) @members) @type
(union_specifier body: (_) @members) @type
(enum_specifier body: (_)) @type

(declaration type: (_ body: (_) @members))
(field_declaration type: (_ body: (_) @members))
(type_definition type: (_ body: (_) @members))

(type_definition) @typedef
(alias_declaration name: (_) @alias)
(declaration) @declaration
(field_declaration) @declaration
(function_definition) @function
(preproc_function_def name: (_) @macro)
(preproc_def name: (_) @macro)
(preproc_def name: (_) @name value: (_)) @constant
