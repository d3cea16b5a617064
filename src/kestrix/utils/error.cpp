#include "kestrix/utils/error.h"

#include <boost/core/demangle.hpp>
#include <boost/stacktrace/frame.hpp>  // defines what stacktrace.hpp only declares
#include <typeinfo>

namespace kestrix {
namespace {

std::string type_of(const std::exception& error) {
  return boost::core::demangle(typeid(error).name());
}

void note_trace(const std::exception& error, Failure& failure) {
  if (const auto* own = dynamic_cast<const Error*>(&error)) {
    failure.trace = boost::stacktrace::to_string(own->trace());
  }
}

std::exception_ptr cause_of(const std::exception& error) {
  const auto* nested = dynamic_cast<const std::nested_exception*>(&error);
  return nested == nullptr ? nullptr : nested->nested_ptr();
}

// The trace nearest to where things went wrong, and what each nested exception says.
void follow_causes(const std::exception& error, Failure& failure) {
  for (auto cause = cause_of(error); cause != nullptr;) {
    try {
      std::rethrow_exception(cause);
    } catch (const std::exception& nested) {
      failure.causes.push_back(type_of(nested) + ": " + nested.what());
      note_trace(nested, failure);
      cause = cause_of(nested);
    } catch (...) {
      failure.causes.emplace_back("unknown exception");
      cause = nullptr;
    }
  }
}

}  // namespace

Failure describe(const std::exception& error) {
  Failure failure{type_of(error), error.what(), {}, {}};
  note_trace(error, failure);
  follow_causes(error, failure);
  if (failure.trace.empty()) {
    failure.trace = boost::stacktrace::to_string(boost::stacktrace::stacktrace());
  }
  return failure;
}

}  // namespace kestrix
