#pragma once

// The prose of the help and of the man pages; the options stand in definitions.cpp.

namespace kestrix::program::help {

inline constexpr const char* kDescription =
    "Chooses, from the structure of a repository, the files that ground each aspect page of a "
    "wiki.";

inline constexpr const char* kProgramNotes = R"(Examples:
  page-sources                                    every page of the current directory
  page-sources ~/src/app --page errors,flows      two pages of that one
  page-sources why . errors src/store.py          why a file is on a page, or why not
  page-sources edges --by folder:2 --format dot | dot -Tsvg > folders.svg
  page-sources symbols --kind class --name '*Error'
  page-sources topic 'Order book' src/book.py src/match.py

page-sources help SUBCOMMAND tells more. Exit codes: 0 done, 1 the work failed, 2 wrong usage.)";

inline constexpr const char* kPagesNotes = R"~(
GLOB is matched against whole paths as git's ":(glob)" does: * and ? stay within a
directory, ** crosses directories, {a,b} is either, a directory's name stands for all
below it. Without GLOB, the flows page shows the classes of entry points that the
structure shows, at most eight, each with the sign that made it one.

Examples:
  page-sources pages ~/src/app --page errors,flows
  page-sources pages --entry-points 'app/{jobs,tasks}/*.py' --entry-points app/routes
  page-sources pages --page errors --paths -0 | xargs -0 wc -l
  page-sources pages --format json | jq -r '.pages.examples.files[].path')~";

inline constexpr const char* kWhyNotes = R"~(
FILE is relative to REPO, or an absolute path below it. REPO may be left out when it is the
current directory. For a file that is on the page, the answer tells its rank, its
reasons with their places, and what stands above it; for any other, what is missing.

Examples:
  page-sources why errors src/store.py
  page-sources why ~/src/app extending app/plugins.py --format json)~";

inline constexpr const char* kEdgesNotes =
    R"~(A weight is 1 for the import plus the uses of what it names. GLOB is read as for pages.

Examples:
  page-sources edges | sort -t "$(printf '\t')" -k3,3nr | head    the strongest first
  page-sources edges --to 'src/core/**'                           who uses the core
  page-sources edges --path src/main.py src/store.py              how one leads to the other
  page-sources edges --by folder:2 --format dot | dot -Tsvg > folders.svg)~";

inline constexpr const char* kReferencesNotes =
    R"~(Columns: source, line, role, target path, target name, count; one row for each file, role and
target, with the line of the first mention. The target is the file that declares the name, after
all re-exports; what lies outside of the repository has no path.

TARGET is a path, or a name: that of a declaration ("Base", "Base.method") or of what lies outside.
Both may hold * and ?.

Examples:
  page-sources references --to Base --role extends     the direct subtypes of Base
  page-sources references --from app.py                all that app.py names
  page-sources references --role reads                 which settings are read where)~";

inline constexpr const char* kSymbolsNotes =
    R"(In GLOB, * is any run of characters, ? is one of them, [...] one of a few.

Examples:
  page-sources symbols --kind class --name '*Error'
  page-sources symbols ~/src/app --kind constant --kind variable --name '*registry')";

inline constexpr const char* kTopicNotes =
    R"(The topic is what a search for material on a code page starts from: the page's title and
the stems of its files, each once.

Example:
  page-sources topic 'Order book' src/book.py src/match.py    prints: Order book book match)";

inline constexpr const char* kIndexNotes =
    R"(Every subcommand that reads a repository refreshes its index first. The index can be
thrown away at any time. With --left-out, each line names a file, or a folder whose name
ends in "/", and after a tab why the answers do not take it into account, or not whole.

Examples:
  page-sources index ~/src/app
  page-sources index --left-out | cut -f2 | sort | uniq -c     how much for which reason
  page-sources index --index /tmp/app.db -j 1 --format json)";

inline constexpr const char* kConfigNotes =
    R"(Settings are read from page-sources/config.toml in the user's configuration directory,
then from .page-sources.toml at the top of the repository, then from the options.

Example:
  page-sources config ~/src/app --exclude 'legacy/**')";

inline constexpr const char* kCacheNotes =
    R"(Indexes lie in the user's cache directory and can be thrown away at any time. Those
whose repository is gone come first.

Examples:
  page-sources cache list
  page-sources cache clean --older-than 30d)";

}  // namespace kestrix::program::help
