#pragma once

// The subcommands and their options, defined once: parsing, help, man pages and completions are
// all made from these.

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "apps/page_sources/arguments.h"

namespace kestrix::program {

using Names = std::vector<std::string>;

/// One option as completions and man pages need it.
struct OptionDefinition {
  Names flags;        ///< "-q", "--quiet"; empty for a positional argument
  std::string value;  ///< what it takes ("GLOB", "text|json"), or the argument's name; may be ""
  std::string help;
  Names choices;  ///< all that it can take, when these are few
  bool common = false;
};

struct SubcommandDefinition {
  std::string name;
  std::string summary;
  std::string notes;
  std::vector<OptionDefinition> options;
};

/// The library's view of the program, bound to the commands that it fills.
class Definitions {
 public:
  Definitions();
  Definitions(const Definitions&) = delete;
  Definitions& operator=(const Definitions&) = delete;

  CLI::App& app() { return app_; }
  const CLI::App& app() const { return app_; }

  /// The help of the program as a whole, whatever was parsed.
  std::string program_help() const;
  Names subcommand_names() const;
  /// The flags of every option, of one subcommand or of all.
  Names flags_of(const CLI::App& app) const;
  /// Whether any subcommand has the flag that this argument ("-j2", "--index=i.db") begins with.
  bool knows(const std::string& argument) const;
  /// Whether a flag ("-j", "--index") is followed by a value, in whatever subcommand.
  bool takes_value(const std::string& flag) const;

  /// The command whose subcommand was parsed.
  Command chosen();

  std::vector<SubcommandDefinition> describe() const;

 private:
  CLI::App& add(const std::string& name, const std::string& summary, const char* notes);
  void add_repository(CLI::App& app, CommonOptions& common, bool required = false);
  void add_common(CLI::App& app, CommonOptions& common);
  void add_wishes(CLI::App& app, CommonOptions& common);
  void add_format(CLI::App& app, Format& format, const Names& names);
  void add_pages();
  void add_why();
  void add_edges();
  void add_edge_filters(CLI::App& app);
  void add_references();
  void add_symbols();
  void add_topic();
  void add_index();
  void add_config();
  void add_cache();
  void add_help();

  CLI::App app_;
  Names pages_named_;
  PagesCommand pages_;
  WhyCommand why_;
  EdgesCommand edges_;
  ReferencesCommand references_;
  SymbolsCommand symbols_;
  TopicCommand topic_;
  IndexCommand index_;
  ConfigCommand config_;
  CacheCommand cache_;
  std::string help_about_;
};

}  // namespace kestrix::program
