#pragma once

#include <string_view>

#include "kestrix/facts/data_signals.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {

/// Whether the name of a file can be that of one that defines data: source in a language that may
/// hold DDL or data classes, or a schema. Lock files and a package manager's manifests are not.
bool may_define_data(std::string_view path);

/// What `text`, the content of `path`, defines. What the index knows of the text is not looked for
/// again; otherwise linear in the text.
DataSignals data_signals(std::string_view path, const Text& text);

}  // namespace kestrix
