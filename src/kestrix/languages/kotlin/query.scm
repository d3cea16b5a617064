((file_annotation (constructor_invocation (user_type (identifier) @_annotation)
   (value_arguments (value_argument (string_literal (string_content) @facade)))))
 (#eq? @_annotation "JvmName"))
(package_header) @package @import
(import) @import

(class_declaration "class" name: (identifier) @name) @class @declaration
(class_declaration "interface" name: (identifier) @name) @interface @declaration
(object_declaration name: (identifier) @name) @class @declaration
(class_declaration [(class_body) (enum_class_body)] @members)
(object_declaration (class_body) @members)
(companion_object (class_body) @members)

(property_declaration
  [(variable_declaration (identifier) @name)
   (multi_variable_declaration (variable_declaration (identifier) @name))] @head)
@value @declaration
(function_declaration name: (identifier) @name) @declaration
(type_alias type: (identifier) @name) @declaration
