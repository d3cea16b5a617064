#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/text/wildmatch.h"

namespace kestrix::index {

/// What the rules say of one file or directory.
enum class Verdict { kNone, kIgnored, kAdmitted };

/// The rules of one git ignore file, in its format (gitignore(5)).
class IgnoreRules {
 public:
  /// Lines that are malformed, or longer than a path may be, match nothing.
  explicit IgnoreRules(std::string_view text, bool ignore_case = false);

  /// What the last matching rule says. `path` is relative to the directory that the rules are for.
  Verdict judge(std::string_view path, bool is_directory) const;

  bool empty() const { return rules_.empty(); }

 private:
  enum class Form { kName, kNameSuffix, kNameGlob, kPath, kPathGlob };
  struct Rule {
    Form form;
    bool admits;
    bool directory_only;
    std::string text;                       // what kName, kNameSuffix and kPath compare with
    std::shared_ptr<const Wildmatch> glob;  // of kNameGlob and kPathGlob
  };

  void add(std::string_view line);
  bool matches(const Rule& rule, std::string_view path, std::string_view name) const;

  std::vector<Rule> rules_;
  bool ignore_case_;
};

/// The rules that hold in one directory: its own and those of the directories above it, the closest
/// first. Keeps its parents alive.
class IgnoreScope {
 public:
  /// `base` is the directory's path, relative to what paths are relative to; "" is the top.
  IgnoreScope(std::shared_ptr<const IgnoreScope> parent, std::string base, IgnoreRules rules)
      : parent_(std::move(parent)), base_(std::move(base)), rules_(std::move(rules)) {}

  /// Whether a file or directory somewhere below the scope is ignored. It does not ask for the
  /// directories above it: below an ignored one everything is.
  bool ignores(std::string_view path, bool is_directory) const;

 private:
  std::shared_ptr<const IgnoreScope> parent_;
  std::string base_;
  IgnoreRules rules_;
};

}  // namespace kestrix::index
