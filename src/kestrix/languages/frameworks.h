#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kestrix::index {

/// What a name from outside of the repository means to those who use it.
enum class Known : std::uint8_t {
  kErrorBase,      ///< what extends it can be thrown
  kErrorHandler,   ///< what extends it, or bears it, is asked about errors that nobody caught
  kErrorHook,      ///< a function of that name is called with errors, or a value names who is
  kErrorValue,     ///< calling it makes an error value
  kErrorMethod,    ///< a type with a method of that name, without parameters, is an error
  kStatusMethod,   ///< a type with a method of that name is one, if functions return it everywhere
  kErrorTest,      ///< what calls it with errors tells them apart
  kResponse,       ///< calling or making it answers a request
  kEndsProgram,    ///< calling it ends the program
  kModelBase,      ///< what extends it is stored
  kModelMarker,    ///< what bears it is stored
  kModelList,      ///< its type arguments are stored, or calling it describes what is
  kRecordBase,     ///< what extends it carries values from one to another
  kRecordMarker,   ///< what bears it does
  kRecordList,     ///< calling it describes what does
  kSettingsBase,   ///< what extends it is filled from the environment or a file
  kSettingsCall,   ///< calling it reads, binds or declares settings
  kSettingsPath,   ///< a glob: its settings stand there, by the framework's convention
  kOpenBase,       ///< what extends it leaves its members to those who implement it
  kLoader,         ///< calling it loads code by name: plug-ins
  kHandlerBase,    ///< what extends it is called from outside: a request, a command, a job
  kHandlerMarker,  ///< what bears it is
  kHandlerPath,    ///< a glob: files there are, by the framework's convention
  kStartPath,      ///< a glob: where such a product starts
  kMain,           ///< a function of that name at the top of a file is where a program starts
  kTestPath,       ///< a glob: what the tests around have without naming it
  kTestBase,       ///< what extends or names it is written for tests
};

/// One name of a framework or of a language's own library. A dotted name means every name that
/// ends with it ("models.Model": also "django.db.models.Model").
struct FrameworkName {
  std::string_view framework;
  Known known;
  std::string_view name;
};

/// The names that matter in a language's files ("python"); empty for a language without.
std::span<const FrameworkName> framework_names(std::string_view language);

/// Whether `name`, a full name from outside, is known as that; the row, or null.
const FrameworkName* known_as(std::string_view language, Known known, std::string_view name);

}  // namespace kestrix::index
