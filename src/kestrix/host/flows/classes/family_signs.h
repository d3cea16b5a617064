#pragma once

#include <set>
#include <span>
#include <string_view>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/host/flows/naming_graph.h"

namespace kestrix {

// What files that play one part show, and what files show that serve others. `members` are
// ascending.

/// Whether it tells who leads to what: among files of the product, more than a type's place, and no
/// subtype naming its base.
bool leads(const CodeEvidence& evidence, const Naming& naming);

/// Whether several others are made from what the file declares: they are called through it.
bool is_base(const CodeEvidence& evidence, index::FileId file);

/// Whether a part of `members` is made from what the file declares: they are called through it.
/// What a few of many extend is one of them.
bool is_base_of(const CodeEvidence& evidence, index::FileId file,
                std::span<const index::FileId> members);

/// Whether at least half of what stands at the top of the file is among `types`.
bool is_mostly(const CodeEvidence& evidence, index::FileId file,
               const std::set<index::DeclarationRef>& types);

/// Whether they derive from, bear, make or call one thing of the product that few others do.
bool have_a_sign(const CodeEvidence& evidence, std::span<const index::FileId> members);

/// Whether another type has it for a field: it serves that type.
bool is_field_elsewhere(const CodeEvidence& evidence, index::FileId file,
                        std::span<const index::FileId> members);

/// Whether it implements a type of the product that nothing else implements: others call it through
/// that.
bool has_own_interface(const CodeEvidence& evidence, index::FileId file,
                       std::span<const index::FileId> members);

/// Whether it says what data is like.
bool defines_data(const CodeEvidence& evidence, index::FileId file);

/// For headers the files of the same name that define what they declare, where there are any;
/// ascending.
std::vector<index::FileId> where_they_act(const CodeEvidence& evidence, const NamingGraph& graph,
                                          std::vector<index::FileId> files);

/// Whether it declares what lies elsewhere.
bool is_header(std::string_view path);

}  // namespace kestrix
