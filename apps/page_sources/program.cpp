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

#include "apps/page_sources/arguments.h"
#include "apps/page_sources/cached.h"
#include "apps/page_sources/configured.h"
#include "apps/page_sources/opener.h"
#include "apps/page_sources/output.h"
#include "capi/answers/answers.h"
#include "capi/answers/escape.h"
#include "capi/answers/json.h"
#include "capi/answers/references.h"
#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix::program {
namespace {

// The subcommands. Each returns the whole answer.
class Commands {
 public:
  Commands(Console& console, const StopFlag& stop)
      : console_(console), stop_(stop), opener_(console, stop) {}

  std::string operator()(const PagesCommand& command) const {
    const Opened opened = opener_.open(command.common);
    const auto pages = answer_pages(opened.generator(), command.pages, command.entry_points,
                                    [this] { check_stop(&stop_); });
    tell_empty_classes(command.common, pages);
    if (command.paths) return paths_as_lines(distinct_paths(pages), command.nul);
    switch (command.format) {
      case Format::kJson:
        return pages_as_json(opened.about(), pages);
      case Format::kTsv:
        return pages_as_tsv(pages);
      default:
        return pages_as_text(pages, style());
    }
  }

  std::string operator()(const WhyCommand& command) const {
    const Opened opened = opener_.open(command.common);
    const WhyAnswer answer =
        answer_why(opened.generator(), opened.root, *command.page, command.file);
    return command.format == Format::kJson ? why_as_json(opened.about(), answer)
                                           : why_as_text(answer, style());
  }

  std::string operator()(const EdgesCommand& command) const {
    const Opened opened = opener_.open(command.common);
    const EdgeRequest& request = command.request;
    const auto edges = answer_edges(*opened.index, request);
    if (!request.path.empty() && edges.empty()) {
      opener_.tell(command.common,
                   fmt::format("no way leads from {} to {}", c_quoted(request.path[0]),
                               c_quoted(request.path[1])));
    }
    switch (command.format) {
      case Format::kJson:
        return edges_as_json(opened.about(), edges);
      case Format::kDot:
        return edges_as_dot(edges, request.folders.has_value());
      default:
        return edges_as_tsv(edges);
    }
  }

  std::string operator()(const ReferencesCommand& command) const {
    const Opened opened = opener_.open(command.common);
    const auto found =
        find_references(*opened.index, {command.to, command.from, command.roles, command.self});
    return command.format == Format::kJson ? references_as_json(opened.about(), found)
                                           : references_as_tsv(found);
  }

  std::string operator()(const SymbolsCommand& command) const {
    const Opened opened = opener_.open(command.common);
    const auto symbols = find_symbols(*opened.index, command.kinds, command.name);
    return command.format == Format::kJson ? symbols_as_json(opened.about(), symbols)
                                           : symbols_as_tsv(symbols);
  }

  std::string operator()(const TopicCommand& command) const {
    return one_line(unit_topic(command.title, command.files)) + '\n';
  }

  std::string operator()(const IndexCommand& command) const {
    const Opened opened = opener_.open(command.common);
    const auto statistics = opened.index->statistics();
    if (command.left_out) {
      const auto left_out = opener_.left_out(command.common);
      return command.format == Format::kJson ? left_out_as_json(opened.about(), left_out)
                                             : left_out_as_tsv(left_out);
    }
    if (command.format == Format::kJson) {
      return statistics_as_json(opened.about(), opened.refresh, statistics);
    }
    if (command.common.quiet) return {};
    opener_.tell(command.common, refresh_as_text(opened.refresh));
    return statistics_as_text(opened.about(), opened.refresh.file.native(), statistics);
  }

  std::string operator()(const ConfigCommand& command) const {
    const auto steering = steering_of(command.common);
    return command.format == Format::kJson ? settings_as_json(steering->settings())
                                           : settings_as_text(steering->settings());
  }

  std::string operator()(const CacheCommand& command) const {
    const auto indexes =
        command.clean ? remove_indexes(command.older_than) : index::list_cached_indexes();
    return command.format == Format::kJson ? cache_as_json(indexes, command.clean)
                                           : cache_as_text(indexes, command.clean);
  }

  std::string operator()(const Information& information) const { return information.text; }

  std::string operator()(const WrongUsage& /*wrong*/) const { return {}; }

 private:
  TextStyle style() const { return {console_.has_styled_answers(), console_.answer_width()}; }

  // A pattern that selects nothing is more likely a slip than a wish.
  void tell_empty_classes(const CommonOptions& common, std::span<const AnsweredPage> pages) const {
    for (const AnsweredPage& page : pages) {
      const auto* flows = std::get_if<FlowsAnswer>(&page.answer);
      if (flows == nullptr) continue;
      for (const FlowClass& flow : flows->classes) {
        if (!flow.roots.empty()) continue;
        opener_.tell(common,
                     fmt::format("no production file matches {}", c_quoted(flow.entry_points)));
      }
    }
  }

  Console& console_;
  const StopFlag& stop_;
  Opener opener_;
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
