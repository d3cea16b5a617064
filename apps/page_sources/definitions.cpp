#include "apps/page_sources/definitions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <system_error>

#include "apps/page_sources/help_texts.h"
#include "capi/answers/escape.h"
#include "capi/answers/names.h"
#include "capi/answers/suggestions.h"
#include "capi/answers/version.h"

namespace kestrix::program {
namespace {

constexpr unsigned kMostThreads = 1024;
constexpr unsigned kMostDays = 100'000;
constexpr unsigned kMostLevels = 100;
constexpr const char* kCommonGroup = "Common options";

const std::map<std::string, Format> kFormats{
    {"text", Format::kText}, {"tsv", Format::kTsv}, {"json", Format::kJson}, {"dot", Format::kDot}};

CLI::Validator checked_by(std::string (*fault)(const std::string&)) {
  return CLI::Validator([fault](std::string& text) { return fault(text); }, "");
}

CLI::Validator one_of(const Names& names) {
  return CLI::Validator([names](const std::string& name) { return name_fault(name, names); }, "");
}

std::string joined(const Names& names) { return fmt::format("{}", fmt::join(names, "|")); }

bool is_number(std::string_view text, unsigned least, unsigned most, unsigned& number) {
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  return failure == std::errc() && end == text.data() + text.size() && number >= least &&
         number <= most;
}

std::string thread_fault(const std::string& text) {
  unsigned threads = 0;
  if (is_number(text, 1, kMostThreads, threads)) return {};
  return fmt::format("{} is no number from 1 to {}", c_quoted(text), kMostThreads);
}

// "folder" is 0 levels, which stands for all of them.
std::optional<unsigned> levels_of(std::string_view text) {
  constexpr std::string_view word = "folder";
  if (!text.starts_with(word)) return std::nullopt;
  text.remove_prefix(word.size());
  if (text.empty()) return 0U;
  unsigned levels = 0;
  if (text.front() == ':' && is_number(text.substr(1), 1, kMostLevels, levels)) return levels;
  return std::nullopt;
}

std::string grouping_fault(const std::string& text) {
  if (levels_of(text)) return {};
  return fmt::format("{} is neither folder nor folder:DEPTH", c_quoted(text));
}

std::optional<unsigned> days_of(std::string_view text) {
  if (text.ends_with('d')) text.remove_suffix(1);
  unsigned days = 0;
  return is_number(text, 0, kMostDays, days) ? std::optional(days) : std::nullopt;
}

std::string days_fault(const std::string& text) {
  if (days_of(text)) return {};
  return fmt::format("{} is no number of days (30d)", c_quoted(text));
}

// An option that may be repeated, one value each time.
CLI::Option* repeated(CLI::Option* option) { return option->allow_extra_args(false); }

CLI::Option* add_globs(CLI::App& app, const std::string& flag, Names& globs,
                       const std::string& help) {
  return repeated(app.add_option(flag, globs, help))
      ->type_name("GLOB")
      ->check(checked_by(path_glob_fault));
}

}  // namespace

Definitions::Definitions() : app_(help::kDescription, "page-sources") {
  app_.set_version_flag("-V,--version", kVersionLine, "Print the version");
  app_.set_help_flag("-h,--help", "Print this help");
  app_.footer(help::kProgramNotes);
  app_.require_subcommand(0, 1);  // none is told in our own words
  app_.get_formatter()->column_width(34);
  add_pages();
  add_why();
  add_edges();
  add_references();
  add_symbols();
  add_topic();
  add_index();
  add_config();
  add_cache();
  add_help();
}

CLI::App& Definitions::add(const std::string& name, const std::string& summary, const char* notes) {
  CLI::App& app = *app_.add_subcommand(name, summary);
  app.footer(notes);
  app.allow_extras();  // they are told in our own words
  return app;
}

void Definitions::add_repository(CLI::App& app, CommonOptions& common, bool required) {
  app.add_option(
         "REPO", common.repository,
         required ? "The repository's directory" : "The repository's directory (default: .)")
      ->type_name("")
      ->required(required);
}

void Definitions::add_common(CLI::App& app, CommonOptions& common) {
  app.add_option("--index", common.index, "The index's file (default: one in the cache directory)")
      ->type_name("FILE")
      ->group(kCommonGroup);
  app.add_option("-j,--threads", common.threads, "Threads (default: as many as the machine has)")
      ->type_name("N")
      ->check(checked_by(thread_fault))
      ->group(kCommonGroup);
  app.add_flag("-q,--quiet", common.quiet, "Tell nothing but errors")->group(kCommonGroup);
  app.add_flag_callback(
         "--no-progress", [&common] { common.progress = false; }, "Show no progress line")
      ->group(kCommonGroup);
  add_wishes(app, common);
}

// Both fill one list, in the order in which they stand on the command line.
void Definitions::add_wishes(CLI::App& app, CommonOptions& common) {
  const auto add_wish = [&](const char* flag, bool include, const char* help) {
    app.add_option_function<std::string>(
           flag,
           [&common, include](const std::string& glob) {
             common.wishes.push_back({glob, include, include ? "--include" : "--exclude"});
           },
           help)
        ->type_name("GLOB")
        ->check(checked_by(path_glob_fault))
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
        ->trigger_on_parse()
        ->group(kCommonGroup);
  };
  add_wish("--exclude", false, "Leave out the files that GLOB matches; may be repeated");
  add_wish("--include", true, "Take these in again; of all globs the last match wins");
}

void Definitions::add_format(CLI::App& app, Format& format, const Names& names) {
  app.add_option_function<std::string>(
         "--format", [&format](const std::string& name) { format = kFormats.at(name); },
         "Form of the answer; the first by default")
      ->check(one_of(names))
      ->type_name(joined(names));
}

void Definitions::add_pages() {
  auto& app = add("pages", "Print the files of every aspect page", help::kPagesNotes);
  add_repository(app, pages_.common);
  repeated(app.add_option("--page", pages_named_, "Only these pages; may be repeated"))
      ->type_name("NAME,...")
      ->delimiter(',')
      ->check(one_of(page_names()));
  add_globs(app, "--entry-points", pages_.entry_points,
            "The flows of the files that GLOB selects; may be repeated");
  add_format(app, pages_.format, {"text", "json", "tsv"});
  app.add_flag("--paths", pages_.paths, "Print bare paths, each once");
  app.add_flag("-0,--null", pages_.nul, "End each bare path with NUL (implies --paths)");
  add_common(app, pages_.common);
  std::string notes = "Pages:\n";
  for (const Page& page : kPages) notes += fmt::format("  {:<14}  {}\n", page.name, page.title);
  app.footer(notes + help::kPagesNotes);
}

void Definitions::add_why() {
  auto& app = add("why", "Print why a file is on a page, or why not", help::kWhyNotes);
  add_repository(app, why_.common, true);
  app.add_option_function<std::string>(
         "PAGE", [this](const std::string& name) { why_.page = pages_named(Names{name}).front(); },
         fmt::format("One of {}", fmt::join(page_names(), ", ")))
      ->type_name("")
      ->required()
      ->check(one_of(page_names()));
  app.add_option("FILE", why_.file, "The file, relative to REPO")->type_name("")->required();
  add_format(app, why_.format, {"text", "json"});
  add_common(app, why_.common);
}

void Definitions::add_edges() {
  auto& app =
      add("edges", "Print which file depends on which, and how strongly", help::kEdgesNotes);
  add_repository(app, edges_.common);
  add_edge_filters(app);
  app.add_option_function<std::string>(
         "--by", [this](const std::string& text) { edges_.request.folders = levels_of(text); },
         "Sum the edges between folders, of DEPTH levels at most")
      ->type_name("folder[:DEPTH]")
      ->check(checked_by(grouping_fault));
  add_format(app, edges_.format, {"tsv", "json", "dot"});
  add_common(app, edges_.common);
}

void Definitions::add_edge_filters(CLI::App& app) {
  add_globs(app, "--to", edges_.request.query.to,
            "Only edges to files that GLOB matches; may be repeated");
  add_globs(app, "--from", edges_.request.query.from, "Only edges from them; may be repeated");
  add_globs(app, "--within", edges_.request.query.within, "Only edges among them; may be repeated");
  app.add_option("--path", edges_.request.path, "Only the edges of a shortest way from A to B")
      ->type_name("A B")
      ->expected(2)
      ->allow_extra_args(false);
}

void Definitions::add_references() {
  auto& app = add("references", "Print who names what, and in which role", help::kReferencesNotes);
  add_repository(app, references_.common);
  const auto many = [&](const char* flag, Names& into, const char* help) {
    return repeated(app.add_option(flag, into, help))
        ->type_name("TARGET")
        ->check(checked_by(name_glob_fault));
  };
  many("--to", references_.to, "Only references to this path or name; may be repeated");
  many("--from", references_.from, "Only references in files of this path; may be repeated");
  const Names roles = role_names();
  repeated(app.add_option("--role", references_.roles, "Only these roles; may be repeated"))
      ->type_name(joined(roles))
      ->delimiter(',')
      ->check(one_of(roles));
  app.add_flag("--self", references_.self,
               "Also references within one file; else of these only bases");
  add_format(app, references_.format, {"tsv", "json"});
  add_common(app, references_.common);
}

void Definitions::add_symbols() {
  auto& app = add("symbols", "Print the symbols that the index holds", help::kSymbolsNotes);
  add_repository(app, symbols_.common);
  repeated(app.add_option_function<Names>(
               "--kind",
               [this](const Names& names) {
                 for (const auto& name : names) symbols_.kinds.push_back(*kind_named(name));
               },
               "Only these kinds; may be repeated"))
      ->type_name(joined(kind_names()))
      ->delimiter(',')
      ->check(one_of(kind_names()));
  app.add_option("--name", symbols_.name, "Only names like GLOB, in any case")
      ->type_name("GLOB")
      ->check(checked_by(name_glob_fault));
  add_format(app, symbols_.format, {"tsv", "json"});
  add_common(app, symbols_.common);
}

void Definitions::add_topic() {
  auto& app = add("topic", "Print the retrieval topic of a code page", help::kTopicNotes);
  app.add_option("TITLE", topic_.title, "The page's title")->required()->type_name("");
  app.add_option("FILE", topic_.files, "The page's files")->required()->type_name("");
}

void Definitions::add_index() {
  auto& app = add("index", "Refresh the index and print its figures", help::kIndexNotes);
  add_repository(app, index_.common);
  app.add_flag("--left-out", index_.left_out,
               "Name what is left out, with the reason, instead of figures");
  add_format(app, index_.format, {"text", "json"});
  add_common(app, index_.common);
}

void Definitions::add_config() {
  auto& app = add("config", "Print the settings in force, and where from", help::kConfigNotes);
  add_repository(app, config_.common);
  add_format(app, config_.format, {"text", "json"});
  add_common(app, config_.common);
}

void Definitions::add_cache() {
  auto& app = add("cache", "List the indexes that are kept, or remove them", help::kCacheNotes);
  app.add_option_function<std::string>(
         "ACTION", [this](const std::string& action) { cache_.clean = action == "clean"; },
         "list (default) or clean")
      ->type_name("")
      ->check(one_of({"list", "clean"}));
  app.add_option_function<std::string>(
         "--older-than", [this](const std::string& text) { cache_.older_than = days_of(text); },
         "Only those that were not written to for so many days")
      ->type_name("DAYSd")
      ->check(checked_by(days_fault));
  add_format(app, cache_.format, {"text", "json"});
}

void Definitions::add_help() {
  auto& app = add("help", "Print the help of a subcommand", "");
  app.add_option("SUBCOMMAND", help_about_, "The subcommand")->type_name("");
}

std::string Definitions::program_help() const {
  return app_.get_formatter()->make_help(&app_, app_.get_name(), CLI::AppFormatMode::Normal);
}

Names Definitions::subcommand_names() const {
  Names names;
  for (const CLI::App* sub : app_.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(sub->get_name());
  }
  return names;
}

Names Definitions::flags_of(const CLI::App& app) const {
  Names flags;
  for (const CLI::Option* option : app.get_options()) {
    for (const auto& name : option->get_snames()) flags.push_back("-" + name);
    for (const auto& name : option->get_lnames()) flags.push_back("--" + name);
  }
  return flags;
}

bool Definitions::knows(const std::string& argument) const {
  const std::string flag =
      argument.starts_with("--") ? argument.substr(0, argument.find('=')) : argument.substr(0, 2);
  return std::ranges::any_of(
      app_.get_subcommands([](const CLI::App*) { return true; }),
      [&flag](const CLI::App* sub) { return sub->get_option_no_throw(flag) != nullptr; });
}

bool Definitions::takes_value(const std::string& flag) const {
  for (const CLI::App* sub : app_.get_subcommands([](const CLI::App*) { return true; })) {
    const CLI::Option* option = sub->get_option_no_throw(flag);
    if (option != nullptr)
      return option->get_type_size() > 0 && option->get_items_expected_max() > 0;
  }
  return false;
}

Command Definitions::chosen() {
  const std::string name = app_.get_subcommands().front()->get_name();
  if (name == "why") return why_;
  if (name == "edges") return edges_;
  if (name == "references") return references_;
  if (name == "symbols") return symbols_;
  if (name == "topic") return topic_;
  if (name == "index") return index_;
  if (name == "config") return config_;
  if (name == "cache") return cache_;
  if (name == "help") {
    const Names names = subcommand_names();
    if (help_about_.empty()) return Information{program_help()};
    if (std::ranges::find(names, help_about_) == names.end()) {
      return WrongUsage{fmt::format("{} is no subcommand{}", c_quoted(help_about_),
                                    did_you_mean(help_about_, names))};
    }
    return Information{app_.get_subcommand(help_about_)->help("page-sources")};
  }
  pages_.pages = pages_named(pages_named_);
  pages_.paths = pages_.paths || pages_.nul;
  return pages_;
}

namespace {

OptionDefinition definition_of(const CLI::Option& option) {
  OptionDefinition defined;
  for (const auto& name : option.get_snames()) defined.flags.push_back("-" + name);
  for (const auto& name : option.get_lnames()) defined.flags.push_back("--" + name);
  defined.value = option.get_positional() ? option.get_name(true) : option.get_type_name();
  defined.help = option.get_description();
  defined.common = option.get_group() == kCommonGroup;
  const std::string choices = option.get_lnames().empty() ? "" : option.get_type_name();
  if (choices.find('|') != std::string::npos) {
    defined.choices = CLI::detail::split(choices, '|');
  }
  if (defined.value == "NAME,..." || defined.value == "PAGE") defined.choices = page_names();
  if (defined.value == "ACTION") defined.choices = {"list", "clean"};
  return defined;
}

}  // namespace

std::vector<SubcommandDefinition> Definitions::describe() const {
  std::vector<SubcommandDefinition> all;
  for (const CLI::App* sub : app_.get_subcommands([](const CLI::App*) { return true; })) {
    SubcommandDefinition defined{sub->get_name(), sub->get_description(), sub->get_footer(), {}};
    for (const CLI::Option* option : sub->get_options()) {
      defined.options.push_back(definition_of(*option));
    }
    all.push_back(std::move(defined));
  }
  return all;
}

}  // namespace kestrix::program
