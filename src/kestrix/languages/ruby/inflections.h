#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrix::index::ruby {

/// "order_line", "shop/order" as the class that is called so: "OrderLine", "Shop::Order".
std::string class_name(std::string_view path);

/// What a plural word may be one of; more than one where its end leaves that open.
std::vector<std::string> singulars(std::string_view plural);

/// A word in the plural: "user" as "users".
std::string plural(std::string_view singular);

}  // namespace kestrix::index::ruby
