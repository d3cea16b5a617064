#include "kestrix/host/extending/extension_signals.h"

namespace kestrix {
namespace {

thread_local const ExtensionRankingScope::Scores* scores_in_force = nullptr;

}  // namespace

ExtensionRankingScope::ExtensionRankingScope(const Scores& scores) : before_(scores_in_force) {
  scores_in_force = &scores;
}

ExtensionRankingScope::~ExtensionRankingScope() { scores_in_force = before_; }

const ExtensionRankingScope::Scores* ExtensionRankingScope::current() { return scores_in_force; }

}  // namespace kestrix
