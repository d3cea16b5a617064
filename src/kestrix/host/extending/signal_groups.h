#pragma once

#include <span>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/host/extending/contracts.h"

namespace kestrix {

// The groups of signals that the sheet of the page is made of. Each looks at the product alone, but
// for tests that implement what it declares.

/// Of the files that declare contracts and bases: who implements them and who asks for them.
void add_contract_signals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                          ScoreSheet& sheet);
/// Of the files that hold implementations: that list, pair or take them.
void add_holder_signals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                        ScoreSheet& sheet);
/// Of the files that declare what those who implement a contract are given, and hardly others.
void add_context_signals(const CodeEvidence& evidence, std::span<const Contract> contracts,
                         ScoreSheet& sheet);
/// Of the files that code is handed over to when it is loaded or by a table.
void add_registry_signals(const CodeEvidence& evidence, ScoreSheet& sheet);
/// Of the files whose functions register what others give them, that hold it, or that load it by
/// name.
void add_store_signals(const CodeEvidence& evidence, ScoreSheet& sheet);
/// Of the files through which alone the product knows others of its files.
void add_wiring_signals(const CodeEvidence& evidence, ScoreSheet& sheet);

}  // namespace kestrix
