package shop.core

sealed interface Priced {
  val price: Int

  @FunctionalInterface
  fun interface Listener<T : Priced> { @Throws(PricingException::class) fun priced(what: T) }
}

abstract class Loader<T> {
  abstract fun load(id: String): T?

  fun size() = SIZES[0]
}

internal val SIZES = listOf(1, 2, 3)

typealias Prices = Map<Priced, Int>

interface Codec<T> {
  fun decode(text: String): T
}

open class Item(override val price: Int) : Priced

open class PricingException(message: String, cause: Throwable? = null) :
  RuntimeException(message, cause)

class InvalidOrder(text: String) : PricingException("invalid: $text")

class NotFound : PricingException("none")
