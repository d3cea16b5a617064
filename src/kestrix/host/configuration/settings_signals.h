#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/evidence/score_sheet.h"

namespace kestrix {

/// What shows that a product is configured by a file: files of keys that the code reads, types and
/// functions that are filled from the environment, a file or flags, and who hands them on.
ScoreSheet settings_sheet(const CodeEvidence& evidence);

/// Adds what the names of declarations say of settings, by who uses them: types with fields, what
/// gives them, tables of options.
void add_settings_names(const CodeEvidence& evidence, ScoreSheet& sheet);

/// Adds what the paths say: where frameworks look for settings, and samples to be copied.
void add_settings_places(const CodeEvidence& evidence, ScoreSheet& sheet);

/// Adds builders of what has many options, and what these are by default.
void add_settings_builders(const CodeEvidence& evidence, ScoreSheet& sheet);

/// Whether a key is written as variables of the environment are.
bool is_environment_variable(std::string_view key);

/// Adds the files that declare several of the variables, as fields or constants of those names.
void add_settings_variables(const CodeEvidence& evidence, std::vector<std::string> variables,
                            ScoreSheet& sheet);

/// Adds what the other signals do not see, but what they see leads to.
void add_settings_company(const CodeEvidence& evidence, ScoreSheet& sheet);

}  // namespace kestrix
