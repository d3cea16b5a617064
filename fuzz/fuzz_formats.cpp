// Project files in every format. The input's first byte picks one, the rest is the file.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "fuzz/require.h"
#include "kestrix/formats/json.h"
#include "kestrix/formats/limits.h"
#include "kestrix/formats/scalars.h"
#include "kestrix/formats/xml.h"

namespace kestrix::index {
namespace {

using test::require;

constexpr std::array kFormats = {Format::kJson, Format::kYaml,       Format::kToml, Format::kXml,
                                 Format::kIni,  Format::kProperties, Format::kEnv};

void read_scalars(Format format, std::string_view text) {
  const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
  std::size_t count = 0;
  for_each_scalar(format, text, [&](const Scalar& scalar) {
    ++count;
    require(scalar.path.size() <= kDeepest + 1, "a path is no deeper than what is read");
    require(scalar.line > 0, "lines count from 1");
    // YAML and TOML take other characters for the end of a line, too.
    const bool plain = format != Format::kYaml && format != Format::kToml;
    require(!plain || scalar.line <= lines, "a scalar stands in the text");
  });
  require(count <= text.size() + 1, "no more scalars than bytes");
}

void read_elements(std::string_view text) {
  std::size_t line = 1;
  for_each_element(text, [&](const XmlElement& element) {
    require(element.line >= line, "elements come in the order of the text");
    line = element.line;
  });
}

}  // namespace
}  // namespace kestrix::index

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix::index;  // NOLINT(google-build-using-namespace)
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  const Format format = kFormats[*data % kFormats.size()];
  read_scalars(format, text);
  if (format == Format::kXml) read_elements(text);
  if (format == Format::kJson) parse_config(text);
  return 0;
}
