#include "kestrix/host/extending/chance.h"

#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::DeclarationRef;

constexpr std::string_view kSilent = "go";
// Fewer packages may well have been written for the interface, and meet it only where they are put
// together.
constexpr std::size_t kManyFolders = 4;

}  // namespace

Chance::Chance(const CodeEvidence& evidence) : evidence_(evidence) {
  const auto files = evidence.index().files();
  for (const auto& edge : evidence.index().edges()) {
    if (files[edge.source].language != kSilent) continue;
    imports_.emplace(index::folder_of(files[edge.source].path),
                     index::folder_of(files[edge.target].path));
  }
}

std::string_view Chance::folder(DeclarationRef type) const {
  return index::folder_of(evidence_.path(type.file));
}

bool Chance::related(DeclarationRef type, DeclarationRef implementer) const {
  const std::string_view one = folder(type);
  const std::string_view other = folder(implementer);
  return one == other || imports_.contains({one, other}) || imports_.contains({other, one});
}

void Chance::leave_out(DeclarationRef type, std::vector<DeclarationRef>& implementers) const {
  const auto& declared = evidence_[type];
  if (evidence_.index().files()[type.file].language != kSilent) return;
  if (declared.methods != 1 || !declared.bases().empty()) return;
  std::set<std::string_view> folders;
  for (const DeclarationRef implementer : implementers) {
    if (!related(type, implementer)) folders.insert(folder(implementer));
  }
  if (folders.size() < kManyFolders) return;
  std::erase_if(implementers,
                [&](DeclarationRef implementer) { return !related(type, implementer); });
}

}  // namespace kestrix
