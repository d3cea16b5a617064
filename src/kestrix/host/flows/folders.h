#pragma once

#include <string_view>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// The folder that all of the files lie in; "" for the top.
std::string_view common_folder(const CodeEvidence& evidence,
                               const std::vector<index::FileId>& files);

/// Whether a path lies in a folder or below it.
bool lies_in(std::string_view path, std::string_view folder);

/// The files of one folder, without those of folders below it.
std::vector<index::FileId> files_in(const CodeEvidence& evidence, std::string_view folder);

}  // namespace kestrix
