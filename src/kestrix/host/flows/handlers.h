#pragma once

#include <map>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/host/flows/dispatch/tables.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {

/// Why a framework finds something in a file by itself.
struct HandlerSign {
  const index::FrameworkName* row = nullptr;
  const index::FrameworkName* place = nullptr;  ///< the row whose folder it lies in, if any
  Place at{};  ///< what extends or bears it; only the file where its path alone shows it
};

/// The files with something that a framework calls by convention: by base type (through any number
/// of the repository's own), by annotation, by place where no manifest above says otherwise.
std::map<index::FileId, HandlerSign> framework_handlers(const CodeEvidence& evidence,
                                                        TableTexts& texts);

}  // namespace kestrix
