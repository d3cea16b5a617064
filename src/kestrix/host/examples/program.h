#pragma once

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// Whether the product is a program: it starts somewhere and reaches most of its code from there.
/// What is none is there for others' code to use. Linear in the edges.
bool is_program(const CodeEvidence& code);

/// Whether a framework starts the product or calls it, by the places of its files.
bool is_application(const CodeEvidence& code);

}  // namespace kestrix
