#pragma once

// The tree-sitter grammars compiled into this library, one function a language. Each returns a
// pointer to static, immutable data: never null, never to be freed, usable from any thread.

struct TSLanguage;

extern "C" {
const TSLanguage* tree_sitter_c();
const TSLanguage* tree_sitter_c_sharp();
const TSLanguage* tree_sitter_cpp();
const TSLanguage* tree_sitter_go();
const TSLanguage* tree_sitter_java();
const TSLanguage* tree_sitter_javascript();
const TSLanguage* tree_sitter_kotlin();
const TSLanguage* tree_sitter_php();
const TSLanguage* tree_sitter_python();
const TSLanguage* tree_sitter_ruby();
const TSLanguage* tree_sitter_rust();
const TSLanguage* tree_sitter_scala();
const TSLanguage* tree_sitter_swift();
const TSLanguage* tree_sitter_tsx();
const TSLanguage* tree_sitter_typescript();
}
