#pragma once

#include <string_view>

namespace kestrix {

/// The test that a class signature declares a contract that others implement.
struct InterfaceSignaturePattern {};
inline constexpr InterfaceSignaturePattern INTERFACE_SIGNATURE_RE{};

/// Whether the pattern matches anywhere in `signature`; the linked host defines the pattern.
bool search(const InterfaceSignaturePattern& pattern, std::string_view signature);

}  // namespace kestrix
