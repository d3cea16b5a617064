#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kestrix/index/repository.h"

namespace kestrix::program {

enum class Format { kText, kTsv, kJson, kDot };

/// The aspect pages, in the order in which they are printed.
enum class PageName {
  kDataModels,
  kConfiguration,
  kErrors,
  kFlows,
  kExtending,
  kExamples,
  kDecisions,
};

inline constexpr std::array<std::string_view, 7> kPageNames{
    "data_models", "configuration", "errors", "flows", "extending", "examples", "decisions"};

constexpr std::string_view to_string(PageName page) {
  return kPageNames[static_cast<std::size_t>(page)];
}

/// What the subcommands that read a repository share.
struct CommonOptions {
  std::filesystem::path repository = ".";
  std::optional<std::filesystem::path>
      index;             ///< the index's file; else one in the cache directory
  unsigned threads = 0;  ///< 0: as many as the machine has
  bool quiet = false;    ///< only errors are told
  bool progress = true;  ///< as far as standard error is a terminal
};

struct PagesCommand {
  CommonOptions common;
  std::vector<PageName> pages;            ///< ascending and distinct, never empty
  std::vector<std::string> entry_points;  ///< patterns; empty: what the structure shows
  Format format = Format::kText;
};

struct EdgesCommand {
  CommonOptions common;
  Format format = Format::kTsv;
};

struct ReferencesCommand {
  CommonOptions common;
  std::vector<std::string> to;     ///< paths or names of what is named; empty: anything
  std::vector<std::string> from;   ///< paths of the files that name it; empty: any
  std::vector<std::string> roles;  ///< empty: every role
  bool self = false;               ///< also those within one file
  Format format = Format::kTsv;
};

struct SymbolsCommand {
  CommonOptions common;
  std::optional<SymbolKind> kind;  ///< none: every kind
  std::string name = "%";
  Format format = Format::kTsv;
};

struct TopicCommand {
  std::string title;
  std::vector<std::string> files;
};

struct IndexCommand {
  CommonOptions common;
};

/// The arguments ask for a text (help, version) instead of work.
struct Information {
  std::string text;
};

/// The arguments are wrong; `message` says how, in one line.
struct WrongUsage {
  std::string message;
};

using Command = std::variant<PagesCommand, EdgesCommand, ReferencesCommand, SymbolsCommand,
                             TopicCommand, IndexCommand, Information, WrongUsage>;

/// Reads the arguments of one run (without the program's name). Looks at nothing but them.
Command parse(std::span<const std::string> arguments);

}  // namespace kestrix::program
