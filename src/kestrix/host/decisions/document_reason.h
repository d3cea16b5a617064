#pragma once

#include <string_view>

#include "kestrix/host/decisions/document_evidence.h"
#include "kestrix/host/reason.h"

namespace kestrix {

/// Why a document stands on the page: `sign`, what it names, and who points to it. `view` may be
/// null.
Reason document_reason(std::string_view kind, std::string_view sign, const DocumentView* view);

}  // namespace kestrix
