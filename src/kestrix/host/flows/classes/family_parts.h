#pragma once

#include <vector>

#include "kestrix/host/flows/classes/families.h"

namespace kestrix {

/// The files of a class by the product's large parts: one part's handlers are a class of their own.
std::vector<std::vector<index::FileId>> areas_of(const CodeEvidence& evidence,
                                                 const std::vector<index::FileId>& files);

/// A class without the folders in which something else names nearly all of it, and each of those as
/// a class; the class alone where nothing does. Those that hand on to others of the class come
/// apart, too.
std::vector<Family> parts_of(const FlowEvidence& evidence, const PathPatterns& patterns,
                             Family family);

}  // namespace kestrix
