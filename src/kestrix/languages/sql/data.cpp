#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

constexpr auto kPlainExtensions = std::to_array<std::string_view>(
    {"sql", "ddl",  "cql", "pgsql", "psql", "mysql", "hql", "c",  "h",  "cc",
     "cpp", "cxx",  "hh",  "hpp",   "hxx",  "m",     "mm",  "pl", "pm", "lua",
     "sh",  "bash", "erl", "clj",   "dart", "hs",    "ml",  "fs", "vb", "pas",
     "r",   "jl",   "nim", "zig",   "cr",   "exs",   "tcl", "d"});

}  // namespace

const DataLanguage& sql_data() {
  static constexpr DataLanguage kLanguage{kPlainExtensions, DataSyntax::kCode, {}};
  return kLanguage;
}

}  // namespace kestrix
