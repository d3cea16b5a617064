; inherits: common

(field_definition property: (property_identifier) @name value: (_)? @body) @binding
