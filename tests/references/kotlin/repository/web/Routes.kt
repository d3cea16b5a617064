package shop.web

import io.server.Application
import io.server.Value
import shop.core.*
import shop.core.Order.Companion.LIMIT
import shop.core.Order.Status.PAID
import shop.core.total as sum
import shop.odd.Order as Named

private val FINDERS: Map<String, (String) -> Order?> = mapOf("file" to ::fromFile, "db" to Db::find)

@Named("orders")
@Value("\${orders.page:10}") data class Settings(val page: Int)

fun fromFile(id: String): Order? = System.getenv("ORDERS_FILE")?.let { Order.load(it) }

object Db {
  fun find(id: String): Order = throw NotFound()
}

class Routes<S : Codec<Order>>(
  @Named("s") private val store: S,
  settings: Settings,
) : Application(), Priced.Listener<Order> {
  private val page = settings.page
  private val log = object : Priced.Listener<Item> {
    override fun priced(what: Item) = find(what.price)
  }

  override fun priced(what: Order) {
    val round = what.sum()
    try {
      find(round)
    } catch (e: PricingException) {
      throw failed(e)
    }
    listOf(what).map { it.sum() }
  }

  private fun find(price: Int) {
    val order: Any = Order.of(Line(Item(price), LIMIT))
    when (order) {
      is Named -> round(1)
      is List<*>, PAID -> if (order !is Prices) order as Loader<Item>
      Order.Status.NEW -> this.priced(order = order)
      else -> FINDERS["db"]?.invoke("x")
    }
    val store = provide<Codec<Line>>(::fromFile)
    store.find()
    listeners.forEach(this::priced)
  }

  private fun failed(e: Exception): RuntimeException = NotFound()

  lateinit var listeners: List<Order>
}

@Stored(
  // @Deprecated
  keys = [
    @Key(Order::class, "name"),
  ],
)
@Logged
internal class Page
