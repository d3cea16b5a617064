(package_clause name: (package_identifier) @package)
(package_clause body: (template_body) @enter)
(package_object name: (identifier) @object body: (template_body))
(import_declaration) @import

(class_definition name: (identifier) @name) @class @declaration
(object_definition name: (identifier) @name) @class @declaration
(enum_definition name: (identifier) @name) @class @declaration
(trait_definition name: (identifier) @name) @interface @declaration
(class_definition body: (template_body) @members)
(object_definition body: (template_body) @members)
(trait_definition body: (template_body) @members)
(enum_definition body: (enum_body) @members)
(package_object body: (template_body) @members)

(val_definition pattern: (identifier) @name) @value @declaration
(var_definition pattern: (identifier) @name) @value @declaration
(given_definition name: (identifier) @name) @declaration
(function_definition name: (identifier) @name) @declaration
(type_definition name: (type_identifier) @name) @declaration
