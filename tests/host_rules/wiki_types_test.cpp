#include "kestrix/workers/wiki_types.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace kestrix {
namespace {

constexpr std::string_view kContracts[] = {
    "class Store(ABC)",
    "class Store(ABC):",
    "class Store(abc.ABC)",
    "class Store(Base, ABC)",
    "class Store(Generic[K, V], ABC)",
    "class Store(Protocol)",
    "class Store(Protocol[T_co])",
    "class Store(Protocol[Callable[[int], str]])",
    "class Store(typing.Protocol)",
    "class Store(typing_extensions.Protocol[T])",
    "class HTTPClientProtocol(Protocol)",
    "class Store(metaclass=ABCMeta)",
    "class Store(Base, metaclass=abc.ABCMeta)",
    "class Store[T](Protocol)",
    "class Store(make_base(1, 2), ABC)",
    "class Store(six.with_metaclass(abc.ABCMeta, object))",
    "abstract class Store",
    "export default abstract class Store<T>",
    "public abstract class Store<T extends Comparable<T>> implements Closeable",
    "public abstract partial class Store",
    "public abstract record Shape",
    "abstract struct Visitor",
    "class Visitor : public Base abstract",
    "interface Store",
    "export interface Store<T> extends Base<T>",
    "public sealed interface Shape permits Circle",
    "@FunctionalInterface public interface Job",
    "@Api(name = \"x\", in = @In(1)) interface Job",
    "fun interface Job",
    "[Obsolete] public interface IStore",
    "trait Visit",
    "pub trait Visit: Sized",
    "pub(crate) unsafe trait Visit",
    "#[async_trait] pub trait Visit",
    "public protocol Drawable: AnyObject",
};

constexpr std::string_view kOthers[] = {
    "",
    "class Store",
    "class Store(Base)",
    "class ServerFactory(HTTPClientProtocol)",
    "class HTTPClientProtocol(asyncio.Protocol_)",
    "class ABCStore(ABCBase)",
    "class Store(Dict[str, ABC])",
    "class Store(Mapping[str, Protocol, int])",
    "class Store(metaclass=EnumABCMeta)",
    "class Store(Base, abstract=True)",
    "class interface(Base)",
    "public @interface Marker",
    "class AbstractStore extends Base",
    "class InterfaceFactory",
    "class Store(val protocol: String)",
    "public class Store implements Closeable",
    "class traits : public Base",
    "struct Point",
    "public record Point(int x, int y)",
    "sealed class Result",
};

TEST(InterfaceSignature, MatchesContracts) {
  for (const auto signature : kContracts) {
    EXPECT_TRUE(search(INTERFACE_SIGNATURE_RE, signature)) << signature;
  }
}

TEST(InterfaceSignature, PassesOverWhatOnlySoundsLikeOne) {
  for (const auto signature : kOthers) {
    EXPECT_FALSE(search(INTERFACE_SIGNATURE_RE, signature)) << signature;
  }
}

TEST(InterfaceSignature, StaysLinearOnHostileText) {
  EXPECT_FALSE(search(INTERFACE_SIGNATURE_RE, "class A(" + std::string(200000, '[')));
  EXPECT_FALSE(search(INTERFACE_SIGNATURE_RE, std::string(200000, 'a') + "\xFF\x80"));
}

}  // namespace
}  // namespace kestrix
