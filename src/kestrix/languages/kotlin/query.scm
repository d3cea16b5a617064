((file_annotation (constructor_invocation (user_type (type_identifier) @annotation)
   (value_arguments (value_argument (string_literal (string_content) @facade)))))
 (#eq? @annotation "JvmName"))
(package_header) @package @import
(import_list) @enter
(import_header) @import

(class_declaration "class" (type_identifier) @name) @class @declaration
(class_declaration "interface" (type_identifier) @name) @interface @declaration
(object_declaration (type_identifier) @name) @class @declaration
(class_declaration [(class_body) (enum_class_body)] @members)
(object_declaration (class_body) @members)
(companion_object (class_body) @members)

(property_declaration
  [(variable_declaration (simple_identifier) @name)
   (multi_variable_declaration (variable_declaration (simple_identifier) @name))] @head)
@value @declaration
(function_declaration (simple_identifier) @name) @declaration
(type_alias (type_identifier) @name) @declaration
