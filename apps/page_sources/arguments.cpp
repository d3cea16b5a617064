#include "apps/page_sources/arguments.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <map>
#include <system_error>

#include "apps/page_sources/escape.h"
#include "apps/page_sources/version.h"
#include "kestrix/facts/reference_role.h"
#include "kestrix/host/path_glob.h"

namespace kestrix::program {
namespace {

constexpr unsigned kMostThreads = 1024;

constexpr const char* kDescription =
    "Chooses, from the structure of a repository, the files that ground each aspect page of a "
    "wiki.";

constexpr const char* kExamples = R"(Examples:
  page-sources pages                              every page of the current directory
  page-sources ~/src/app                          every page of that one
  page-sources edges --format dot | dot -Tsvg     the dependencies as a picture
  page-sources symbols --kind class --name %Error
  page-sources topic 'Order book' src/book.py src/match.py
  page-sources index ~/src/app                    refresh the index, print its figures

page-sources SUBCOMMAND --help tells more. Exit codes: 0 done, 1 the work failed, 2 wrong usage.)";

constexpr const char* kPagesNotes = R"~(
GLOB is matched against whole paths as git's ":(glob)" does: * and ? stay within a
directory, ** crosses directories, a directory's name stands for all below it.
Without GLOB, the flows page shows the directories of which one file outside uses at
least three production files and a third of them: the farthest reach first, at most five.

Examples:
  page-sources pages ~/src/app --page errors --page flows
  page-sources pages --entry-points 'app/jobs/*.py' --entry-points app/routes
  page-sources pages --format json | jq -r '.pages.examples.files[]')~";

constexpr const char* kReferencesNotes =
    R"~(Columns: source, line, role, target path, target name, count; one row for each file, role and
target, with the line of the first mention. The target is the file that declares the name, after
all re-exports; what lies outside of the repository has no path.

TARGET is a path, or a name: that of a declaration ("Base", "Base.method") or of what lies outside.
Both may hold * and ?.

Examples:
  page-sources references --to Base --role extends     the direct subtypes of Base
  page-sources references --from app.py                all that app.py names
  page-sources references --role reads                 which settings are read where)~";

constexpr const char* kEdgesNotes = R"~(A weight is 1 for the import plus the uses of what it names.

Examples:
  page-sources edges | sort -t "$(printf '\t')" -k3,3nr | head    the strongest first
  page-sources edges --format dot | dot -Tsvg > edges.svg)~";

constexpr const char* kSymbolsNotes = R"(Examples:
  page-sources symbols --kind class --name %Error
  page-sources symbols ~/src/app --name '%registry' --format json)";

constexpr const char* kTopicNotes = R"(Example:
  page-sources topic 'Order book' src/book.py src/match.py    prints: Order book book match)";

constexpr const char* kIndexNotes =
    R"(Every subcommand that reads a repository refreshes its index first. The index can be
thrown away at any time.

Examples:
  page-sources index ~/src/app
  page-sources index --index /tmp/app.db --threads 1)";

const std::map<std::string, Format> kFormats{
    {"text", Format::kText}, {"tsv", Format::kTsv}, {"json", Format::kJson}, {"dot", Format::kDot}};

const std::map<std::string, SymbolKind> kKinds{{"class", SymbolKind::kClass},
                                               {"interface", SymbolKind::kInterface},
                                               {"constant", SymbolKind::kConstant},
                                               {"variable", SymbolKind::kVariable}};

using Names = std::vector<std::string>;

CLI::Validator one_of(const Names& names) {
  const auto fault = [names](const std::string& name) {
    if (std::ranges::find(names, name) != names.end()) return std::string();
    return fmt::format("{} is none of {}", c_quoted(name), fmt::join(names, ", "));
  };
  return CLI::Validator(fault, "");
}

// An option whose value is one of a few names, which `values` maps to what they stand for.
template <class Value>
void add_choice(CLI::App& app, const std::string& option,
                const std::map<std::string, Value>& values, const Names& names, auto store,
                const std::string& help) {
  app.add_option_function<std::string>(
         option, [&values, store](const std::string& name) { store(values.at(name)); }, help)
      ->check(one_of(names))
      ->type_name(fmt::format("{}", fmt::join(names, "|")));
}

void add_format(CLI::App& app, Format& format, const Names& names) {
  add_choice(
      app, "--format", kFormats, names, [&format](Format chosen) { format = chosen; },
      "Form of the answer; the first by default");
}

std::string thread_fault(const std::string& text) {
  unsigned threads = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), threads);
  const bool is_number = failure == std::errc() && end == text.data() + text.size();
  if (is_number && threads >= 1 && threads <= kMostThreads) return {};
  return fmt::format("{} is no number from 1 to {}", c_quoted(text), kMostThreads);
}

void add_common(CLI::App& app, CommonOptions& common) {
  app.add_option("REPO", common.repository, "The repository's directory (default: .)")
      ->type_name("");
  app.add_option("--index", common.index, "The index's file (default: one in the cache directory)")
      ->type_name("FILE");
  app.add_option("--threads", common.threads, "Threads (default: as many as the machine has)")
      ->type_name("N")
      ->check(CLI::Validator(thread_fault, ""));
  app.add_flag("--quiet", common.quiet, "Tell nothing but errors");
  app.add_flag_callback(
      "--no-progress", [&common] { common.progress = false; }, "Show no progress line");
}

// The pages of these names in their own order; all of them when there are no names.
std::vector<PageName> pages_named(const Names& names) {
  std::vector<PageName> pages;
  for (std::size_t i = 0; i < kPageNames.size(); ++i) {
    if (names.empty() || std::ranges::find(names, kPageNames[i]) != names.end()) {
      pages.push_back(static_cast<PageName>(i));
    }
  }
  return pages;
}

std::string glob_fault(const std::string& pattern) {
  try {
    const PathGlob glob(pattern);
    return {};
  } catch (const BadGlob& error) {
    return error.what();
  }
}

// The five subcommands, bound to the fields that their options fill.
class Parser {
 public:
  Parser() : app_(kDescription, "page-sources") {
    app_.set_version_flag("--version", kVersionLine);
    app_.footer(kExamples);
    app_.require_subcommand(0, 1);  // none is told in our own words
    app_.get_formatter()->column_width(34);
    add_pages();
    add_edges();
    add_references();
    add_symbols();
    add_topic();
    add_index();
  }

  Command parse(Names arguments) {
    const std::string note = name_the_default(arguments);
    spread_marker(arguments);
    std::ranges::reverse(arguments);  // as the library wants them
    try {
      app_.parse(std::move(arguments));
      return parsed();
    } catch (const CLI::CallForHelp&) {
      return Information{help()};
    } catch (const CLI::CallForVersion& version) {
      return Information{std::string(version.what()) + '\n'};
    } catch (const CLI::ParseError& error) {
      return WrongUsage{one_line(error.what()) + note};
    }
  }

 private:
  // A repository alone asks for its pages. Returns what to add to a complaint: the first word may
  // have been a subcommand that was misspelt.
  std::string name_the_default(Names& arguments) const {
    if (arguments.empty() || arguments.front().starts_with('-')) return {};
    const auto is_first = [&](const CLI::App* app) { return app->check_name(arguments.front()); };
    if (!app_.get_subcommands(is_first).empty()) return {};
    arguments.insert(arguments.begin(), "pages");
    return fmt::format(" ({} is no subcommand, so pages was meant)", c_quoted(arguments[1]));
  }

  void add_pages() {
    auto& app = *app_.add_subcommand("pages", "Print the files of every aspect page");
    add_common(app, pages_.common);
    app.add_option("--page", page_names_, "Only this page; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(one_of({kPageNames.begin(), kPageNames.end()}));
    app.add_option("--entry-points", pages_.entry_points,
                   "The flows of the files that GLOB selects; may be repeated")
        ->type_name("GLOB")
        ->allow_extra_args(false)
        ->check(CLI::Validator(glob_fault, ""));
    add_format(app, pages_.format, {"text", "json"});
    app.footer(fmt::format("Pages: {}\n{}", fmt::join(kPageNames, ", "), kPagesNotes));
  }

  void add_edges() {
    auto& app =
        *app_.add_subcommand("edges", "Print which file depends on which, and how strongly");
    add_common(app, edges_.common);
    add_format(app, edges_.format, {"tsv", "json", "dot"});
    app.footer(kEdgesNotes);
  }

  void add_references() {
    auto& app = *app_.add_subcommand("references", "Print who names what, and in which role");
    add_common(app, references_.common);
    const auto many = [&](const char* option, Names& into, const char* help) {
      return app.add_option(option, into, help)->type_name("TARGET")->allow_extra_args(false);
    };
    many("--to", references_.to, "Only references to this path or name; may be repeated");
    many("--from", references_.from, "Only references in files of this path; may be repeated");
    const Names roles(index::kRoleNames.begin(), index::kRoleNames.end());
    many("--role", references_.roles, "Only this role; may be repeated")
        ->type_name("ROLE")
        ->check(CLI::IsMember(roles));
    app.add_flag("--self", references_.self,
                 "Also references within one file; else of these only bases");
    add_format(app, references_.format, {"tsv", "json"});
    app.footer(kReferencesNotes);
  }

  void add_symbols() {
    auto& app = *app_.add_subcommand("symbols", "Print the symbols that the index holds");
    add_common(app, symbols_.common);
    add_choice(
        app, "--kind", kKinds, {"class", "interface", "constant", "variable"},
        [this](SymbolKind kind) { symbols_.kind = kind; }, "Only this kind");
    app.add_option("--name", symbols_.name,
                   "Only names like PATTERN, in any case; % is any run of characters")
        ->type_name("PATTERN");
    add_format(app, symbols_.format, {"tsv", "json"});
    app.footer(kSymbolsNotes);
  }

  void add_topic() {
    auto& app = *app_.add_subcommand("topic", "Print the retrieval topic of a code page");
    app.add_option("TITLE", topic_.title, "The page's title")->required()->type_name("");
    app.add_option("FILE", topic_.files, "The page's files")->required()->type_name("");
    app.footer(kTopicNotes);
  }

  void add_index() {
    auto& app = *app_.add_subcommand("index", "Refresh the index and print its figures");
    add_common(app, index_.common);
    app.footer(kIndexNotes);
  }

  // The library ends a subcommand at "--" once its positional arguments could be complete. Those
  // of a topic never are, so there the marker has to come first.
  static void spread_marker(Names& arguments) {
    const auto marker = std::ranges::find(arguments, "--");
    if (marker == arguments.end() || arguments.front() != "topic") return;
    std::rotate(arguments.begin() + 1, marker, marker + 1);
  }

  Command parsed() {
    const auto chosen = app_.get_subcommands();
    if (chosen.empty()) {
      return WrongUsage{
          "a subcommand is required: pages, edges, references, symbols, topic or index"};
    }
    const std::string name = chosen.front()->get_name();
    if (name == "edges") return edges_;
    if (name == "references") return references_;
    if (name == "symbols") return symbols_;
    if (name == "topic") return topic_;
    if (name == "index") return index_;
    pages_.pages = pages_named(page_names_);
    return pages_;
  }

  std::string help() const {
    const auto chosen = app_.get_subcommands();
    return chosen.empty() ? app_.help() : chosen.front()->help("page-sources");
  }

  CLI::App app_;
  Names page_names_;
  PagesCommand pages_;
  EdgesCommand edges_;
  ReferencesCommand references_;
  SymbolsCommand symbols_;
  TopicCommand topic_;
  IndexCommand index_;
};

}  // namespace

Command parse(std::span<const std::string> arguments) {
  return Parser().parse({arguments.begin(), arguments.end()});
}

}  // namespace kestrix::program
