#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/text/seeded_hash.h"

namespace kestrix {

/// What a script in a language without a grammar shows of itself, line by line: of a shell, of Tcl,
/// of Perl. Views the text that it was read from.
struct ScriptFacts {
  std::vector<std::string_view> defines;  ///< functions and procedures
  std::vector<std::string_view> loads;    ///< names of files that it takes in, without folders
  /// The words where a command may stand, and how often each does.
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> commands;
  std::uint32_t lines = 0;  ///< neither blank nor comments
};

/// Linear in the text.
ScriptFacts read_script(std::string_view text);

/// Whether tests that are written as scripts have such a path.
bool is_script_path(std::string_view path);

/// That one script uses another: it takes it in, or calls what that one alone defines. Both are
/// places among the texts.
struct ScriptUse {
  std::size_t user;
  std::size_t helper;
  std::uint32_t count;
};

struct ScriptUses {
  std::vector<ScriptUse> uses;       ///< by user, then helper
  std::vector<std::uint32_t> lines;  ///< by text
};

/// `paths` and `texts` belong together. Linear in the texts.
ScriptUses uses_among_scripts(const std::vector<std::string_view>& paths,
                              const std::vector<std::string>& texts);

}  // namespace kestrix
