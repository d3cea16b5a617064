#pragma once

#include <string>

#include "kestrix/host/settings/settings.h"

namespace kestrix::program {

/// One line a setting: what it is, its value, and where it stands.
std::string settings_as_text(const Settings& settings);
std::string settings_as_json(const Settings& settings);

}  // namespace kestrix::program
