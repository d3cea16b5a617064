#pragma once

#include <string_view>

namespace kestrix {

/// The test that a class signature declares a contract that others implement.
struct InterfaceSignaturePattern {};
inline constexpr InterfaceSignaturePattern INTERFACE_SIGNATURE_RE{};

/// Whether the pattern matches in `signature`, the head of a declaration on one line; the linked
/// host defines the pattern. It matches the words of a declaration, never a part of a name:
///
///   * `interface`, `trait` and `protocol` in the keyword's place, behind any modifiers and
///     annotations ("public sealed interface Shape", "pub(crate) trait Visit", not "@interface");
///   * `abstract class`, `abstract record`, `abstract struct`, with modifiers between, and a class
///     or struct whose head ends in "abstract";
///   * a Python class with exactly the base `ABC`, `Protocol` or `Protocol[…]`, or the metaclass
///     `ABCMeta`, each also dotted. "class HTTPClientProtocol(Protocol)" is a contract, and
///     "class ServerFactory(HTTPClientProtocol)" is none.
///
/// Linear in the signature's length; may be called from several threads.
bool search(const InterfaceSignaturePattern& pattern, std::string_view signature);

}  // namespace kestrix
