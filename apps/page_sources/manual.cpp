#include "apps/page_sources/manual.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <iterator>
#include <string_view>

#include "apps/page_sources/help_texts.h"
#include "capi/answers/version.h"

namespace kestrix::program {
namespace {

// A text as roff shows it: no escape, no hyphen that breaks options, no line that is a request.
std::string roff(std::string_view text) {
  std::string out;
  bool starts_line = true;
  for (const char c : text) {
    if (starts_line && (c == '.' || c == '\'')) out += "\\&";
    if (c == '\\')
      out += "\\e";
    else if (c == '-')
      out += "\\-";
    else
      out += c;
    starts_line = c == '\n';
  }
  return out;
}

std::string header(std::string_view name) {
  return fmt::format(".TH {} 1 \"\" \"page\\-sources {}\" \"User Commands\"\n", roff(name),
                     roff(kVersion));
}

std::string literal_section(std::string_view title, std::string_view text) {
  while (text.starts_with('\n')) text.remove_prefix(1);
  if (text.empty()) return {};
  return fmt::format(".SH {}\n.nf\n{}\n.fi\n", title, roff(text));
}

std::string option_head(const OptionDefinition& option) {
  if (option.flags.empty()) return fmt::format("\\fI{}\\fR", roff(option.value));
  std::string head =
      fmt::format("\\fB{}\\fR", roff(fmt::format("{}", fmt::join(option.flags, ", "))));
  if (!option.value.empty()) head += fmt::format(" \\fI{}\\fR", roff(option.value));
  return head;
}

std::string options_section(std::string_view title, const SubcommandDefinition& subcommand,
                            bool common) {
  std::string out;
  for (const OptionDefinition& option : subcommand.options) {
    if (option.common != common) continue;
    out += fmt::format(".TP\n{}\n{}\n", option_head(option), roff(option.help));
  }
  return out.empty() ? out : fmt::format(".SH {}\n{}", title, out);
}

std::string synopsis(const SubcommandDefinition& subcommand) {
  std::string out = fmt::format(".SH SYNOPSIS\n\\fBpage\\-sources {}\\fR", roff(subcommand.name));
  bool has_flags = false;
  for (const OptionDefinition& option : subcommand.options) {
    if (option.flags.empty()) out += fmt::format(" \\fI{}\\fR", roff(option.value));
    has_flags = has_flags || !option.flags.empty();
  }
  return out + (has_flags ? " [\\fIOPTIONS\\fR]\n" : "\n");
}

constexpr const char* kExits =
    ".SH EXIT STATUS\n.TP\n0\nDone. An empty answer is an answer.\n"
    ".TP\n1\nThe work failed; one line on standard error says what.\n"
    ".TP\n2\nWrong usage; one line on standard error names the argument.\n";

constexpr const char* kEnvironment =
    ".SH ENVIRONMENT\n.TP\nXDG_CACHE_HOME\nWhere indexes are kept, in page\\-sources/ (default: "
    "~/.cache).\n.TP\nXDG_CONFIG_HOME\nWhere page\\-sources/config.toml is read from (default: "
    "~/.config).\n.TP\nNO_COLOR\nWhen set, nothing is bold or dimmed.\n";

// Shell words: single quotes, as every one of the three shells reads them but for the escape.
std::string quoted(std::string_view text, std::string_view escaped_quote) {
  std::string out = "'";
  for (const char c : text) {
    if (c == '\'')
      out += escaped_quote;
    else
      out += c;
  }
  return out + '\'';
}

Names flags_of(const SubcommandDefinition& subcommand) {
  Names flags;
  for (const auto& option : subcommand.options) {
    flags.insert(flags.end(), option.flags.begin(), option.flags.end());
  }
  return flags;
}

Names names_of(std::span<const SubcommandDefinition> subcommands) {
  Names names;
  for (const auto& subcommand : subcommands) names.push_back(subcommand.name);
  return names;
}

// "flag1|flag2) COMPREPLY=…": what follows an option with a value.
std::string bash_values(const SubcommandDefinition& subcommand) {
  std::string out;
  for (const auto& option : subcommand.options) {
    if (option.flags.empty() || option.value.empty()) continue;
    const std::string words =
        option.choices.empty() ? "-f" : fmt::format("-W '{}'", fmt::join(option.choices, " "));
    fmt::format_to(std::back_inserter(out),
                   "        {}:{}) COMPREPLY=($(compgen {} -- \"$word\")); return ;;\n",
                   subcommand.name, fmt::join(option.flags, fmt::format("|{}:", subcommand.name)),
                   words);
  }
  return out;
}

// What a bare word of a subcommand can be, beyond a file.
std::string bare_words(const SubcommandDefinition& subcommand,
                       std::span<const SubcommandDefinition> all) {
  if (subcommand.name == "help") return fmt::format("{}", fmt::join(names_of(all), " "));
  for (const auto& option : subcommand.options) {
    if (option.flags.empty() && !option.choices.empty()) {
      return fmt::format("{}", fmt::join(option.choices, " "));
    }
  }
  return {};
}

std::string zsh_option(const OptionDefinition& option) {
  std::string out;
  std::string help;
  for (const char c : option.help) {
    if (c == '[' || c == ']' || c == ':') help += '\\';
    help += c;
  }
  for (const std::string& flag : option.flags) {
    std::string argument = fmt::format("*{}[{}]", flag, help);
    if (!option.choices.empty()) {
      argument += fmt::format(":value:({})", fmt::join(option.choices, " "));
    } else if (!option.value.empty()) {
      argument += ":value:_files";
    }
    out += fmt::format("        {} \\\n", quoted(argument, "'\\''"));
  }
  return out;
}

}  // namespace

std::string man_page(std::span<const SubcommandDefinition> subcommands) {
  std::string out = header("PAGE-SOURCES");
  out += fmt::format(".SH NAME\npage\\-sources \\- {}\n",
                     "choose the files that ground each aspect page of a wiki");
  out +=
      ".SH SYNOPSIS\n\\fBpage\\-sources\\fR [\\fISUBCOMMAND\\fR] [\\fIREPO\\fR] "
      "[\\fIOPTIONS\\fR]\n";
  out += fmt::format(".SH DESCRIPTION\n{}\nWithout a subcommand, pages is meant.\n",
                     roff(help::kDescription));
  out += ".SH SUBCOMMANDS\n";
  for (const auto& subcommand : subcommands) {
    out += fmt::format(".TP\n\\fB{}\\fR\n{}; see \\fBpage\\-sources\\-{}\\fR(1)\n",
                       roff(subcommand.name), roff(subcommand.summary), roff(subcommand.name));
  }
  return out + kExits + kEnvironment + literal_section("NOTES", help::kProgramNotes);
}

std::string man_page(const SubcommandDefinition& subcommand) {
  const std::string name = "page-sources-" + subcommand.name;
  std::string out = header(name);
  out += fmt::format(".SH NAME\n{} \\- {}\n", roff(name), roff(subcommand.summary));
  out += synopsis(subcommand);
  out += options_section("OPTIONS", subcommand, false);
  out += options_section("COMMON OPTIONS", subcommand, true);
  out += literal_section("NOTES", subcommand.notes);
  return out + kExits + ".SH SEE ALSO\n\\fBpage\\-sources\\fR(1)\n";
}

std::string bash_completion(std::span<const SubcommandDefinition> subcommands) {
  const Names names = names_of(subcommands);
  std::string values;
  std::string words;
  for (const auto& subcommand : subcommands) {
    values += bash_values(subcommand);
    fmt::format_to(std::back_inserter(words), "        {}) flags='{}' bare='{}' ;;\n",
                   subcommand.name, fmt::join(flags_of(subcommand), " "),
                   bare_words(subcommand, subcommands));
  }
  return fmt::format(R"(# bash completion for page-sources
_page_sources() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD-1]}}
    local names='{0}' command=pages each flags bare
    for each in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        case " $names " in *" $each "*) command=$each; break ;; esac
    done
    case $command:$before in
{1}    esac
    case $command in
{2}    esac
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$flags" -- "$word"))
    else
        [[ $COMP_CWORD == 1 ]] && bare="$bare $names"
        COMPREPLY=($(compgen -W "$bare" -- "$word") $(compgen -f -- "$word"))
    fi
}}
complete -o filenames -F _page_sources page-sources
)",
                     fmt::join(names, " "), values, words);
}

std::string zsh_completion(std::span<const SubcommandDefinition> subcommands) {
  std::string described;
  std::string cases;
  for (const auto& subcommand : subcommands) {
    described +=
        fmt::format("    {}\n", quoted(subcommand.name + ":" + subcommand.summary, "'\\''"));
    cases += fmt::format("    {})\n      _arguments \\\n", subcommand.name);
    for (const auto& option : subcommand.options) cases += zsh_option(option);
    const std::string bare = bare_words(subcommand, subcommands);
    cases += bare.empty() ? "        '*:file:_files' ;;\n"
                          : fmt::format(
                                "        '*:word:_alternative \"words:word:({})\" "
                                "\"files:file:_files\"' ;;\n",
                                bare);
  }
  return fmt::format(R"(#compdef page-sources
local -a subcommands
subcommands=(
{0})
local each command=pages
for each in ${{words[2,CURRENT-1]}}; do
  if (( ${{subcommands[(I)$each:*]}} )); then command=$each; break; fi
done
if (( CURRENT == 2 )) && [[ $words[2] != -* ]]; then
  _describe subcommand subcommands
  _files
  return
fi
case $command in
{1}esac
)",
                     described, cases);
}

std::string fish_completion(std::span<const SubcommandDefinition> subcommands) {
  const Names names = names_of(subcommands);
  std::string out = "# fish completion for page-sources\n";
  const std::string all = fmt::format("{}", fmt::join(names, " "));
  for (const auto& subcommand : subcommands) {
    out += fmt::format(
        "complete -c page-sources -n 'not __fish_seen_subcommand_from {}' -a {} -d {}\n", all,
        subcommand.name, quoted(subcommand.summary, "\\'"));
    const std::string seen =
        subcommand.name == "pages"
            ? fmt::format(
                  "__fish_seen_subcommand_from pages; or not __fish_seen_subcommand_from {}", all)
            : fmt::format("__fish_seen_subcommand_from {}", subcommand.name);
    if (const auto bare = bare_words(subcommand, subcommands); !bare.empty()) {
      out += fmt::format("complete -c page-sources -n '{}' -a '{}'\n", seen, bare);
    }
    for (const auto& option : subcommand.options) {
      if (option.flags.empty()) continue;
      out += fmt::format("complete -c page-sources -n '{}'", seen);
      for (const auto& flag : option.flags) {
        out += flag.starts_with("--") ? " -l " + flag.substr(2) : " -s " + flag.substr(1);
      }
      if (!option.value.empty()) out += " -r";
      if (!option.choices.empty())
        out += fmt::format(" -f -a '{}'", fmt::join(option.choices, " "));
      out += fmt::format(" -d {}\n", quoted(option.help, "\\'"));
    }
  }
  return out;
}

}  // namespace kestrix::program
