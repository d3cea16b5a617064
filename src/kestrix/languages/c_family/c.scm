; What stands in a conditional or in a linkage block counts as standing outside of it.
[
  (preproc_if) (preproc_ifdef) (preproc_elif) (preproc_elifdef) (preproc_else)
  (linkage_specification) (declaration_list)
] @enter

(struct_specifier body: (_)) @type
(union_specifier body: (_)) @type
(enum_specifier body: (_)) @type

(type_definition) @typedef
(declaration) @declaration
(function_definition) @function
(preproc_function_def name: (_) @macro)
(preproc_def name: (_) @macro)
(preproc_def name: (_) @name value: (_)) @constant
