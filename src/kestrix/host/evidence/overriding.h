#pragma once

#include <span>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// The share of `files` that declare a method of a name that the type's own methods have, too,
/// constructors apart: they are called through it.
double overriding_share(const CodeEvidence& evidence, index::DeclarationRef base,
                        std::span<const index::FileId> files);

/// The share of `files` that declare a method for one that the type hardly gives a body: of the
/// method that most of them declare.
double filling_share(const CodeEvidence& evidence, index::DeclarationRef base,
                     std::span<const index::FileId> files);

/// Whether a method of that name makes values of the type.
bool is_constructor(std::string_view method, std::string_view type);

}  // namespace kestrix
