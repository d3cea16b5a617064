#include "kestrix/formats/scalars.h"

#include <array>

#include "kestrix/formats/scalar_readers.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

struct Ending {
  std::string_view extension;
  Format format;
};

constexpr auto kEndings = std::to_array<Ending>({
    {".json", Format::kJson},
    {".jsonc", Format::kJson},
    {".json5", Format::kJson},
    {".yaml", Format::kYaml},
    {".yml", Format::kYaml},
    {".toml", Format::kToml},
    {".xml", Format::kXml},
    {".csproj", Format::kXml},
    {".fsproj", Format::kXml},
    {".vbproj", Format::kXml},
    {".props", Format::kXml},
    {".targets", Format::kXml},
    {".config", Format::kXml},
    {".resx", Format::kXml},
    {".xaml", Format::kXml},
    {".plist", Format::kXml},
    {".slnx", Format::kXml},
    {".ini", Format::kIni},
    {".cfg", Format::kIni},
    {".editorconfig", Format::kIni},
    {".properties", Format::kProperties},
    {".env", Format::kEnv},
});

}  // namespace

std::optional<Format> format_of(std::string_view path) {
  const std::string_view name = base_name(path);
  for (const Ending& ending : kEndings) {
    if (ascii::ends_with(name, ending.extension)) return ending.format;
  }
  if (name.starts_with(".env.")) return Format::kEnv;
  return std::nullopt;
}

void for_each_scalar(Format format, std::string_view text, const ScalarVisitor& visit) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  switch (format) {
    case Format::kJson:
      return read_json_scalars(text, visit);
    case Format::kYaml:
      return read_yaml_scalars(text, visit);
    case Format::kToml:
      return read_toml_scalars(text, visit);
    case Format::kXml:
      return read_xml_scalars(text, visit);
    case Format::kIni:
      return read_ini_scalars(text, visit);
    case Format::kProperties:
      return read_properties_scalars(text, visit);
    case Format::kEnv:
      return read_env_scalars(text, visit);
  }
}

}  // namespace kestrix::index
