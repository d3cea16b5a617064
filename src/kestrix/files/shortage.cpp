#include "kestrix/files/shortage.h"

#include <fmt/format.h>

#include <cerrno>
#include <new>
#include <system_error>

#include "kestrix/utils/error.h"

namespace kestrix::index {

void check_shortage(std::string_view path, int error) {
  if (error == ENOMEM) throw std::bad_alloc();
  if (error != EMFILE && error != ENFILE) return;
  throw Error(fmt::format("{}: {}", path, std::generic_category().message(error)));
}

}  // namespace kestrix::index
