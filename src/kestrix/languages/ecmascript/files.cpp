#include "kestrix/languages/ecmascript/files.h"

#include <array>
#include <span>

#include "kestrix/text/paths.h"

namespace kestrix::index::ecmascript {
namespace {

using Extensions = std::span<const std::string_view>;

constexpr std::array<std::string_view, 11> kTypeScriptOrder = {
    ".ts", ".tsx", ".d.ts", ".js", ".jsx", ".mts", ".cts", ".mjs", ".cjs", ".json", ".vue"};
constexpr std::array<std::string_view, 11> kJavaScriptOrder = {
    ".js", ".jsx", ".mjs", ".cjs", ".ts", ".tsx", ".mts", ".cts", ".json", ".d.ts", ".vue"};

// What an extension stands for when the path is that of a compiled file.
struct Compiled {
  std::string_view extension;
  std::array<std::string_view, 3> sources;
};
constexpr std::array<Compiled, 4> kCompiled = {{
    {".js", {".ts", ".tsx", ".d.ts"}},
    {".jsx", {".tsx", ".ts", ".d.ts"}},
    {".mjs", {".mts", ".ts", ".d.mts"}},
    {".cjs", {".cts", ".ts", ".d.cts"}},
}};

constexpr std::array<std::string_view, 11> kExtensions = {
    ".d.ts", ".d.mts", ".d.cts", ".ts", ".tsx", ".mts", ".cts", ".js", ".jsx", ".mjs", ".cjs"};

std::optional<FileId> find_with(const FileTable& files, std::string_view stem,
                                Extensions extensions) {
  std::string path;
  for (const std::string_view extension : extensions) {
    path.assign(stem).append(extension);
    if (const auto id = files.find(path)) return id;
  }
  return std::nullopt;
}

std::optional<FileId> find_source(const FileTable& files, std::string_view path) {
  for (const Compiled& compiled : kCompiled) {
    if (!path.ends_with(compiled.extension)) continue;
    path.remove_suffix(compiled.extension.size());
    return find_with(files, path, compiled.sources);
  }
  return std::nullopt;
}

Extensions order_of(Dialect dialect) {
  return dialect == Dialect::kTypeScript ? Extensions(kTypeScriptOrder)
                                         : Extensions(kJavaScriptOrder);
}

}  // namespace

Dialect dialect_of(std::string_view path) {
  const std::string_view extension =
      base_name(path).substr(without_extension(base_name(path)).size());
  return extension.find("ts") != std::string_view::npos ? Dialect::kTypeScript
                                                        : Dialect::kJavaScript;
}

bool is_declaration(std::string_view path) {
  return path.ends_with(".d.ts") || path.ends_with(".d.mts") || path.ends_with(".d.cts");
}

std::string_view without_extension(std::string_view path) {
  for (const std::string_view extension : kExtensions) {
    if (path.ends_with(extension)) return path.substr(0, path.size() - extension.size());
  }
  return path;
}

std::optional<FileId> find_file(const FileTable& files, const std::string& path, Dialect dialect) {
  if (base_name(path).empty()) return std::nullopt;
  if (dialect == Dialect::kTypeScript) {
    if (const auto id = find_source(files, path)) return id;
  }
  if (base_name(path).find('.') != std::string_view::npos) {
    if (const auto id = files.find(path)) return id;
  }
  if (dialect == Dialect::kJavaScript) {
    if (const auto id = find_source(files, path)) return id;
  }
  return find_with(files, path, order_of(dialect));
}

std::optional<FileId> find_index(const FileTable& files, std::string_view folder, Dialect dialect) {
  return find_with(files, join(folder, "index"), order_of(dialect));
}

}  // namespace kestrix::index::ecmascript
