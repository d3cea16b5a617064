#pragma once

#include <string>

#include "kestrix/files/root_directory.h"

namespace kestrix::index {

/// The commit that a work tree is at, in hexadecimal, by its git data: `own` holds HEAD, `common`
/// the references that all work trees share. "" before the first commit, and where it cannot be
/// told.
std::string head_commit(const RootDirectory& own, const RootDirectory& common);

}  // namespace kestrix::index
