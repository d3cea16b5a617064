#include <algorithm>
#include <array>

#include "kestrix/languages/c_family/resolver.h"

namespace kestrix::index {
namespace {

// Folders of headers that operating systems bring along.
constexpr std::array<std::string_view, 6> kFolders = {"arpa",  "asm",     "bits",
                                                      "linux", "netinet", "sys"};

// With ".h", of C, POSIX and the usual operating systems; ascending.
constexpr std::array<std::string_view, 96> kNames = {
    "aio",       "alloca",   "ar",      "assert",   "atomic",  "byteswap",  "complex",
    "conio",     "cpio",     "crypt",   "ctype",    "curses",  "dbghelp",   "direct",
    "dirent",    "dlfcn",    "elf",     "endian",   "err",     "errno",     "execinfo",
    "fcntl",     "features", "fenv",    "float",    "fmtmsg",  "fnmatch",   "ftw",
    "getopt",    "glob",     "grp",     "iconv",    "ifaddrs", "immintrin", "intrin",
    "inttypes",  "io",       "iso646",  "langinfo", "libgen",  "libintl",   "limits",
    "link",      "locale",   "malloc",  "math",     "memory",  "mmintrin",  "monetary",
    "mqueue",    "ndbm",     "netdb",   "nl_types", "paths",   "poll",      "process",
    "pthread",   "pty",      "pwd",     "regex",    "resolv",  "sched",     "search",
    "semaphore", "setjmp",   "shlwapi", "signal",   "spawn",   "stdalign",  "stdarg",
    "stdatomic", "stdbool",  "stddef",  "stdint",   "stdio",   "stdlib",    "stdnoreturn",
    "string",    "strings",  "stropts", "syslog",   "tar",     "termios",   "tgmath",
    "threads",   "time",     "uchar",   "ucontext", "ulimit",  "unistd",    "utime",
    "utmpx",     "wchar",    "wctype",  "windows",  "winsock2"};

}  // namespace

bool is_system_header(std::string_view name) {
  const std::size_t slash = name.find('/');
  if (slash != std::string_view::npos) {
    return std::ranges::find(kFolders, name.substr(0, slash)) != kFolders.end();
  }
  if (name.find('.') == std::string_view::npos) return true;
  return name.ends_with(".h") &&
         std::ranges::binary_search(kNames, name.substr(0, name.size() - 2));
}

}  // namespace kestrix::index
