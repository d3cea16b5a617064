#pragma once

#include <vector>

#include "kestrix/host/examples/test_evidence.h"

namespace kestrix {

/// The files outside of the tests that serve them, ascending: what lies among the tests' own data,
/// in folders of test tools, beside the tests of a folder that is about tests, in a folder that
/// nothing of the product uses, or what names a framework of tests. Never what several folders of
/// the product name, too.
std::vector<index::FileId> test_support(const TestEvidence& tests, const CodeEvidence& code);

}  // namespace kestrix
