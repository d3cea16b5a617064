#pragma once

#include <string_view>

#include "kestrix/formats/scalars.h"

namespace kestrix::index {

// The readers behind for_each_scalar, which gives them texts without a byte-order mark.

void read_json_scalars(std::string_view text, const ScalarVisitor& visit);
void read_toml_scalars(std::string_view text, const ScalarVisitor& visit);
void read_yaml_scalars(std::string_view text, const ScalarVisitor& visit);
void read_xml_scalars(std::string_view text, const ScalarVisitor& visit);
void read_ini_scalars(std::string_view text, const ScalarVisitor& visit);
void read_properties_scalars(std::string_view text, const ScalarVisitor& visit);
void read_env_scalars(std::string_view text, const ScalarVisitor& visit);

}  // namespace kestrix::index
