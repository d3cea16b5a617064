#include "kestrix/workers/wiki/page_sources/detectors.h"

#include "kestrix/utils/best_effort.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"

namespace kestrix {

const Logger logger("kestrix.workers.wiki.page_sources");

void warn(const PageSourcesMixin& /*host*/, std::string_view message, const std::exception& error) {
  logger.warning(message, describe(error));
}

std::vector<FileEdge> PageSourcesMixin::_file_edges(const PathSet& paths) const {
  return recipes::_file_edges(*this, paths);
}

std::vector<std::string> PageSourcesMixin::_config_files() const {
  return recipes::_config_files(*this);
}

bool PageSourcesMixin::_has_exceptions() const {
  static const auto guarded = best_effort("wiki.exception_classes", false)(
      [](const PageSourcesMixin& host) { return recipes::_has_exceptions(host); });
  return guarded(*this);
}

std::vector<std::string> PageSourcesMixin::_exception_files() const {
  static const auto guarded = best_effort("wiki.exception_files", std::vector<std::string>())(
      [](const PageSourcesMixin& host) { return recipes::_exception_files(host); });
  return guarded(*this);
}

std::vector<std::string> PageSourcesMixin::_data_model_files() const {
  return recipes::_data_model_files(*this);
}

std::vector<std::string> PageSourcesMixin::_decision_files() const {
  return recipes::_decision_files(*this);
}

std::vector<std::string> PageSourcesMixin::_extension_files() const {
  return recipes::_extension_files(*this);
}

std::vector<std::string> PageSourcesMixin::_test_files() const {
  return recipes::_test_files(*this);
}

std::vector<std::string> PageSourcesMixin::_example_files() const {
  return recipes::_example_files(*this);
}

std::vector<std::string> PageSourcesMixin::_flow_dispatch(
    std::span<const std::string> roots) const {
  return recipes::_flow_dispatch(*this, roots);
}

}  // namespace kestrix
