#include "apps/page_sources/arguments.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "apps/page_sources/definitions.h"
#include "capi/answers/escape.h"
#include "capi/answers/names.h"
#include "capi/answers/suggestions.h"

namespace kestrix::program {
namespace {

bool is_option(std::string_view argument) { return argument.size() > 1 && argument[0] == '-'; }

bool is_about_the_program(std::string_view argument) {
  return argument == "-h" || argument == "--help" || argument == "-V" || argument == "--version";
}

// Whether a word that is no subcommand can be meant as a directory.
bool may_be_directory(const std::string& word) {
  std::error_code ignored;
  return word.empty() || word == "." || word == ".." || word.find('/') != std::string::npos ||
         std::filesystem::exists(word, ignored);
}

class Parser {
 public:
  explicit Parser(Names arguments) : arguments_(std::move(arguments)) {}

  Command parse() {
    try {
      if (auto wrong = place_subcommand()) return *wrong;
      complete_repository();
      spread_marker();
      Names reversed(arguments_.rbegin(), arguments_.rend());  // as the library wants them
      definitions_.app().parse(std::move(reversed));
      return parsed();
    } catch (const CLI::CallForHelp&) {
      return Information{help()};
    } catch (const CLI::CallForVersion& version) {
      return Information{std::string(version.what()) + '\n'};
    } catch (const CLI::ParseError& error) {
      return WrongUsage{one_line(error.what())};
    }
  }

 private:
  // Puts the subcommand in front of its options, and names the default one.
  std::optional<WrongUsage> place_subcommand() {
    if (!arguments_.empty() && is_about_the_program(arguments_.front())) return std::nullopt;
    const std::size_t at = first_word();
    const Names names = definitions_.subcommand_names();
    const bool is_word = at < arguments_.size() && arguments_[at] != "--";
    const auto begin = arguments_.begin();
    const auto word = begin + static_cast<std::ptrdiff_t>(at);
    if (is_word && std::ranges::find(names, arguments_[at]) != names.end()) {
      std::rotate(begin, word, word + 1);
      return std::nullopt;
    }
    // A word behind an option that nobody knows may be its value: the option is to be told.
    const bool clear = std::none_of(begin, word, [this](const std::string& argument) {
      return is_option(argument) && !definitions_.knows(argument);
    });
    if (is_word && clear && !may_be_directory(arguments_[at])) {
      return WrongUsage{fmt::format("{} is neither a subcommand nor a directory{}",
                                    c_quoted(arguments_[at]), did_you_mean(arguments_[at], names))};
    }
    arguments_.insert(arguments_.begin(), "pages");
    return std::nullopt;
  }

  // The first argument that is no option and no value of one; their number when there is none.
  std::size_t first_word() const {
    for (std::size_t at = 0; at < arguments_.size(); ++at) {
      const std::string& argument = arguments_[at];
      if (argument == "--" || !is_option(argument)) return at;
      if (definitions_.takes_value(argument)) ++at;
    }
    return arguments_.size();
  }

  // Of `why PAGE FILE` the current directory is meant; `why REPO PAGE` lacks its file.
  void complete_repository() {
    if (arguments_.front() != "why") return;
    Names words;
    for (std::size_t at = 1; at < arguments_.size(); ++at) {
      if (is_option(arguments_[at]) && arguments_[at] != "--") {
        if (definitions_.takes_value(arguments_[at])) ++at;
      } else if (arguments_[at] == "--") {
        return;
      } else {
        words.push_back(arguments_[at]);
      }
    }
    if (words.size() == 2 && !name_fault(words[1], page_names()).empty()) {
      arguments_.insert(arguments_.begin() + 1, ".");
    }
  }

  // The library ends a subcommand at "--" once its positional arguments could be complete. Those
  // of a topic never are, so there the marker has to come first.
  void spread_marker() {
    const auto marker = std::ranges::find(arguments_, "--");
    if (marker == arguments_.end() || arguments_.front() != "topic") return;
    std::rotate(arguments_.begin() + 1, marker, marker + 1);
  }

  Command parsed() {
    const auto chosen = definitions_.app().get_subcommands();
    if (chosen.empty()) return Information{definitions_.app().help()};
    Names unknown = chosen.front()->remaining();
    std::erase(unknown, "--");
    if (unknown.empty()) return definitions_.chosen();
    const Names flags = definitions_.flags_of(*chosen.front());
    std::vector<std::string> told;
    for (const auto& argument : unknown) told.push_back(c_quoted(argument));
    return WrongUsage{fmt::format("unexpected {}: {}{}",
                                  unknown.size() == 1 ? "argument" : "arguments",
                                  fmt::join(told, " "), did_you_mean(unknown.front(), flags))};
  }

  std::string help() const {
    const auto chosen = definitions_.app().get_subcommands();
    return chosen.empty() ? definitions_.app().help() : chosen.front()->help("page-sources");
  }

  Definitions definitions_;
  Names arguments_;
};

}  // namespace

Command parse(std::span<const std::string> arguments) {
  return Parser({arguments.begin(), arguments.end()}).parse();
}

}  // namespace kestrix::program
