#include "kestrix/utils/error.h"

#include <boost/core/demangle.hpp>
#include <boost/stacktrace/frame.hpp>  // defines what stacktrace.hpp only declares
#include <typeinfo>

namespace kestrix {
namespace {

std::string type_of(const std::exception& error) {
  return boost::core::demangle(typeid(error).name());
}

const Error* innermost_error(const std::exception& error) {
  const auto* found = dynamic_cast<const Error*>(&error);
  try {
    std::rethrow_if_nested(error);
  } catch (const Error& cause) {
    found = &cause;
  } catch (...) {  // a cause without a trace adds nothing here
  }
  return found;
}

void append_causes(const std::exception& error, std::vector<std::string>& causes) {
  try {
    std::rethrow_if_nested(error);
  } catch (const std::exception& cause) {
    causes.push_back(type_of(cause) + ": " + cause.what());
    append_causes(cause, causes);
  } catch (...) {
    causes.emplace_back("unknown exception");
  }
}

}  // namespace

Failure describe(const std::exception& error) {
  Failure failure{type_of(error), error.what(), {}, {}};
  append_causes(error, failure.causes);
  const Error* traced = innermost_error(error);
  failure.trace = boost::stacktrace::to_string(traced != nullptr ? traced->trace()
                                                                 : boost::stacktrace::stacktrace());
  return failure;
}

}  // namespace kestrix
