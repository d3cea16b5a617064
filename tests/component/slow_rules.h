#pragma once

// Slow, obvious versions of the rules, to compare the real ones with.

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "kestrix/workers/wiki/page_sources/rules.h"
#include "tests/component/builders.h"

namespace kestrix::test {

Paths slow_dispatch(const Paths& roots, const Edges& edges, std::size_t limit);

Paths slow_examples(Paths tests, const Edges& edges, std::size_t max_files);

/// The map of dependents as nested lists, in insertion order.
using SlowDependents =
    std::vector<std::pair<std::string, std::vector<std::pair<std::string, double>>>>;

SlowDependents slow_dependents(const Edges& edges);

/// The rule's own map in the same form.
SlowDependents flat(const Dependents& dependents);

}  // namespace kestrix::test
