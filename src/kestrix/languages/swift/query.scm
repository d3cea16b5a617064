(import_declaration) @import

(class_declaration name: (type_identifier) @name) @class @declaration
(protocol_declaration name: (type_identifier) @name) @interface @declaration
(class_declaration name: (user_type) @extended)
(class_declaration body: [(class_body) (enum_class_body)] @members)
(protocol_declaration body: (protocol_body) @members)

(property_declaration name: (pattern (simple_identifier) @name)) @value @declaration
(function_declaration name: (simple_identifier) @name) @declaration
(typealias_declaration name: (type_identifier) @name) @declaration
