#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/decisions/document_evidence.h"
#include "kestrix/host/reason.h"

namespace kestrix {

/// Prose that is no design document by `rank_design_documents`, which found `designs`, but that may
/// tell why: what there is to read where there are few better ones, best first.
///
/// It gives reasons, names the code, is named by it, or stands beside it; it holds little code,
/// speaks little to its reader, and is no page of a manual, which has many beside it. The fewer
/// designs, the more it takes of them and the less is asked of each.
///
/// `read` gives a document's text; it is asked for the most likely ones alone.
std::vector<Pick> hinting_documents(const std::vector<std::string>& documents,
                                    const DocumentEvidence& evidence,
                                    const std::vector<Pick>& designs,
                                    const std::function<std::string(std::string_view)>& read);

}  // namespace kestrix
