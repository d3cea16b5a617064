#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "capi/answers/answers.h"
#include "capi/answers/opened.h"
#include "kestrix/host/pages.h"
#include "kestrix/index/repository.h"

namespace kestrix::program {

enum class Format { kText, kTsv, kJson, kDot };

/// What the subcommands that read a repository share.
struct CommonOptions : RepositoryOptions {
  bool quiet = false;    ///< only errors are told
  bool progress = true;  ///< as far as standard error is a terminal
};

struct PagesCommand {
  CommonOptions common;
  std::vector<const Page*> pages;         ///< in their own order, distinct, never empty
  std::vector<std::string> entry_points;  ///< patterns; empty: what the structure shows
  Format format = Format::kText;
  bool paths = false;  ///< bare paths instead of a format
  bool nul = false;    ///< they end in NUL instead of a line's end
};

struct WhyCommand {
  CommonOptions common;
  const Page* page = nullptr;
  std::string file;
  Format format = Format::kText;
};

struct EdgesCommand {
  CommonOptions common;
  EdgeRequest request;
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
  std::vector<SymbolKind> kinds;  ///< empty: every kind
  std::string name = "*";         ///< a glob, in any case
  Format format = Format::kTsv;
};

struct TopicCommand {
  std::string title;
  std::vector<std::string> files;
};

struct IndexCommand {
  CommonOptions common;
  bool left_out = false;  ///< name what is left out
  Format format = Format::kText;
};

struct ConfigCommand {
  CommonOptions common;
  Format format = Format::kText;
};

struct CacheCommand {
  bool clean = false;                  ///< else list
  std::optional<unsigned> older_than;  ///< days since an index was last written
  Format format = Format::kText;
};

/// The arguments ask for a text (help, version) instead of work.
struct Information {
  std::string text;
};

/// The arguments are wrong; `message` says how, in one line.
struct WrongUsage {
  std::string message;
};

using Command =
    std::variant<PagesCommand, WhyCommand, EdgesCommand, ReferencesCommand, SymbolsCommand,
                 TopicCommand, IndexCommand, ConfigCommand, CacheCommand, Information, WrongUsage>;

/// Reads the arguments of one run (without the program's name). Looks at nothing but them, and at
/// whether the first word is a directory when it is no subcommand.
Command parse(std::span<const std::string> arguments);

}  // namespace kestrix::program
