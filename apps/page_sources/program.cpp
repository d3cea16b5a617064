#include "apps/page_sources/program.h"

#include <fmt/format.h>

#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "apps/page_sources/answers.h"
#include "apps/page_sources/arguments.h"
#include "apps/page_sources/escape.h"
#include "apps/page_sources/output.h"
#include "apps/page_sources/references.h"
#include "kestrix/host/native_logger.h"
#include "kestrix/host/wiki_generator.h"
#include "kestrix/index/indexer.h"
#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix::program {
namespace {

// A repository whose index is up to date.
struct Opened {
  std::filesystem::path root;  // absolute, without symbolic links
  std::unique_ptr<index::RepositoryIndex> index;
  index::RefreshResult refresh;

  WikiGenerator generator() const { return {*index, root}; }
  std::string_view name() const { return root.native(); }
};

// The subcommands. Each returns the whole answer.
class Commands {
 public:
  Commands(Console& console, const StopFlag& stop) : console_(console), stop_(stop) {}

  std::string operator()(const PagesCommand& command) const {
    const Opened opened = open(command.common);
    const auto pages = answer_pages(opened.generator(), command.pages, command.entry_points);
    if (!command.common.quiet) tell_empty_classes(pages);
    return command.format == Format::kJson ? pages_as_json(opened.name(), pages)
                                           : pages_as_text(pages, console_.has_styled_answers());
  }

  std::string operator()(const EdgesCommand& command) const {
    const Opened opened = open(command.common);
    const std::vector<FileEdge> edges = list_edges(*opened.index);
    switch (command.format) {
      case Format::kJson:
        return edges_as_json(opened.name(), edges);
      case Format::kDot:
        return edges_as_dot(edges);
      default:
        return edges_as_tsv(edges);
    }
  }

  std::string operator()(const ReferencesCommand& command) const {
    const Opened opened = open(command.common);
    const auto found =
        find_references(*opened.index, {command.to, command.from, command.roles, command.self});
    return command.format == Format::kJson ? references_as_json(opened.name(), found)
                                           : references_as_tsv(found);
  }

  std::string operator()(const SymbolsCommand& command) const {
    const Opened opened = open(command.common);
    const auto symbols = find_symbols(RepositoryHandle(*opened.index), command.kind, command.name);
    return command.format == Format::kJson ? symbols_as_json(opened.name(), symbols)
                                           : symbols_as_tsv(symbols);
  }

  std::string operator()(const TopicCommand& command) const {
    return unit_topic(command.title, command.files) + '\n';
  }

  std::string operator()(const IndexCommand& command) const {
    const Opened opened = open(command.common);
    if (!command.common.quiet) {
      console_.message(fmt::format("page-sources: {}\n", refresh_as_text(opened.refresh)));
    }
    return statistics_as_text(opened.name(), opened.refresh.file.native(),
                              opened.index->statistics());
  }

  std::string operator()(const Information& information) const { return information.text; }

  std::string operator()(const WrongUsage& /*wrong*/) const { return {}; }

 private:
  Opened open(const CommonOptions& common) const {
    set_log_quiet(common.quiet);
    ProgressLine progress(console_, common.progress && !common.quiet);
    index::IndexOptions options;
    options.root = common.repository;
    options.file = common.index;
    options.threads = common.threads;
    options.stop = &stop_;
    options.progress = [&progress](std::size_t done, std::size_t total) {
      progress.update("indexing", done, total);
    };
    auto refreshed = index::refresh_and_open(options);
    return {std::filesystem::canonical(common.repository), std::move(refreshed.index),
            std::move(refreshed.result)};
  }

  // A pattern that selects nothing is more likely a slip than a wish.
  void tell_empty_classes(std::span<const PageAnswer> pages) const {
    for (const PageAnswer& page : pages) {
      for (const FlowClass& flow : page.classes) {
        if (!flow.roots.empty()) continue;
        console_.message(fmt::format("page-sources: no production file matches {}\n",
                                     c_quoted(flow.entry_points)));
      }
    }
  }

  Console& console_;
  const StopFlag& stop_;
};

int tell(Console& console, int code, std::string_view what) {
  console.message(fmt::format("page-sources: {}\n", one_line(what)));
  return code;
}

int answer(const Command& command, Console& console, const StopFlag& stop) {
  if (const auto* wrong = std::get_if<WrongUsage>(&command)) {
    return tell(console, kWrongUsage, wrong->message + " (see page-sources --help)");
  }
  const std::string whole = std::visit(Commands(console, stop), command);
  check_stop(&stop);
  console.answer(whole);
  return kDone;
}

}  // namespace

int run(std::span<const std::string> arguments, Console& console, const StopFlag& stop) {
  try {
    return answer(parse(arguments), console, stop);
  } catch (const ClosedPipe&) {
    return kDone;
  } catch (const StopRequest&) {
    return kStopped;
  } catch (const std::bad_alloc&) {
    return tell(console, kFailed, "out of memory");
  } catch (const std::exception& error) {
    return tell(console, kFailed, error.what());
  }
}

}  // namespace kestrix::program
