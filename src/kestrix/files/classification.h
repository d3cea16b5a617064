#pragma once

#include <string_view>

namespace kestrix::index {

/// Whether a path names prose (.md, .rst, .adoc, .txt, .org, README …) and not source. Text files
/// that tools read (requirements.txt, CMakeLists.txt) are source.
bool is_document_path(std::string_view path);

}  // namespace kestrix::index
