#pragma once

#include <string_view>

namespace kestrix::index {

/// Whether a path names prose (.md, .rst, .adoc, .txt, .org, README …) and not source. Text files
/// that tools read (requirements.txt, CMakeLists.txt) are source.
bool is_document_path(std::string_view path);

/// Whether a file was made by a program and not by hand: a lock file or build product by its name,
/// or a text that says so in its leading comment ("Code generated … DO NOT EDIT").
bool is_generated(std::string_view path, std::string_view text);

/// Whether a script or style sheet is squeezed into a few long lines. There is nothing to learn
/// from its names.
bool is_minified(std::string_view path, std::string_view text);

}  // namespace kestrix::index
