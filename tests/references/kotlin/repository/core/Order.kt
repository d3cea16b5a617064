package shop.core

import kotlinx.serialization.Serializable

@Serializable(with = OrderSerializer::class)
data class Order(val id: String, val lines: List<Line>, private val status: Status = Status.NEW) :
  Priced, Comparable<Order> {
  enum class Status(val code: String) {
    NEW(CODE) {
      override fun next() = PAID
    },
    PAID("p");

    open fun next(): Status = this
  }

  override val price: Int get() = lines.sumOf { it.price }

  override fun compareTo(other: Order) = price - other.price

  companion object : Loader<Order>() {
    const val LIMIT = 20

    fun of(vararg lines: Line): Order = Order(nextId(), lines.toList())
  }
}

class Line(val item: Item, count: Int) : Priced by item {
  private val rounded = round(count)
}

private const val CODE = "n"

object OrderSerializer : Codec<Order> {
  override fun decode(text: String) = if (text.isEmpty()) throw InvalidOrder(text) else Order.of()
}

fun pick(id: Int): Order? = null
