#include "kestrix/host/data_models/data_signals.h"

#include "kestrix/index/refresh/data_definitions.h"
#include "kestrix/languages/data_languages.h"

namespace kestrix {

bool may_define_data(std::string_view path) { return definition_scan_of(path) != nullptr; }

DataSignals data_signals(std::string_view path, const Text& text) {
  return text.definitions() ? *text.definitions() : index::data_definitions(path, text.str());
}

}  // namespace kestrix
