(package_clause (package_identifier) @package)
(import_declaration) @import
(type_declaration) @types
(const_declaration) @values
(var_declaration) @values
(function_declaration) @function
(method_declaration) @method
