#include <algorithm>

#include "kestrix/host/flows/dispatch/dispatch_hops.h"

namespace kestrix {
namespace {

using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;
using index::Role;

constexpr Signal kSender{"makes_what_they_take", 1.8, "makes what {} entry point takes",
                         "makes what {} entry points take", "eShopOnWeb"};
constexpr Signal kMessageBase{
    "base_of_what_they_take", 1.8, "declares what the values that {} entry point takes extend",
    "declares what the values that {} entry points take extend", "firefly, eShopOnWeb"};
// A sender makes the values of so many entry points, and of one in so many; what more files do than
// these is nothing of a sender's.
constexpr std::size_t kLeastSent = 2;
constexpr std::size_t kSentShare = 4;
constexpr std::size_t kMostSenders = 5;

class Messages {
 public:
  explicit Messages(Dispatch& dispatch) : dispatch_(dispatch), evidence_(dispatch.evidence) {
    for (const FileId root : dispatch.roots.files()) take_from(root);
    std::erase_if(taken_, [](const auto& entry) { return entry.second.size() > 1; });
  }

  void add() {
    SeenBy senders;
    SeenBy bases;
    for (const auto& [type, roots] : taken_) {
      for (const std::uint32_t at : evidence_.references_to(type)) {
        note(evidence_.reference(at), Role::kConstructs, roots, senders);
      }
      for (const IndexedReference& to : evidence_.index().references_from(type.file)) {
        const bool own = to.within == type.place + 1 && kSubtyping.has(to.role);
        if (own && to.declaration > 0 && dispatch_.roots.may_dispatch(to.target)) {
          take(evidence_.place_of(DeclarationRef{to.target, to.declaration - 1}), roots,
               bases[to.target]);
        }
      }
    }
    const std::size_t all = dispatch_.roots.size();
    std::erase_if(senders, [&](const auto& entry) {
      const std::size_t count = entry.second.files.size();
      return count < kLeastSent || count * kSentShare < all;
    });
    if (senders.size() <= kMostSenders) add_all(senders, kSender);
    std::erase_if(bases, [&](const auto& entry) {
      return entry.second.files.size() * 2 < all || entry.second.files.size() < 2;
    });
    add_all(bases, kMessageBase);
  }

 private:
  void take_from(FileId root) {
    for (const IndexedReference& to : evidence_.index().references_from(root)) {
      if (to.declaration == 0 || to.role != Role::kType) continue;
      const DeclarationRef type{to.target, to.declaration - 1};
      if (index::is_type(evidence_[type].kind) && dispatch_.roots.may_dispatch(to.target)) {
        taken_[type].insert(root);
      }
    }
  }

  void note(const IndexedReference& from, Role role, const std::set<FileId>& roots,
            SeenBy& into) const {
    if (from.role != role || !dispatch_.roots.may_dispatch(from.source)) return;
    take(evidence_.place_of(from), roots, into[from.source]);
  }

  static void take(Place place, const std::set<FileId>& roots, Seen& seen) {
    seen.files.insert(roots.begin(), roots.end());
    seen.at.push_back(std::move(place));
  }

  void add_all(const SeenBy& found, const Signal& signal) {
    for (const auto& [file, seen] : found) {
      dispatch_.sheet.add(file, signal, seen.files.size(), seen.at);
      dispatch_.lead(file, seen.files);
    }
  }

  Dispatch& dispatch_;
  const CodeEvidence& evidence_;
  std::map<DeclarationRef, std::set<FileId>> taken_;
};

}  // namespace

void add_messages(Dispatch& dispatch) { Messages(dispatch).add(); }

}  // namespace kestrix
