#include "kestrix/index/refresh/data_definitions.h"

#include "kestrix/languages/data_languages.h"
#include "kestrix/roles/generated.h"

namespace kestrix::index {

DataSignals data_definitions(std::string_view path, std::string_view text) {
  const auto* scan = definition_scan_of(path);
  if (scan == nullptr) return {};
  text = scanned_part(text);
  DataSignals signals = scan->signals(text);
  signals.made_by_program = signals.any() && (has_generator_notice(text) || is_squeezed(text));
  return signals;
}

}  // namespace kestrix::index
