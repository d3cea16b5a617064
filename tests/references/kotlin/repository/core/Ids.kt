package shop.core

private var last = 0

fun nextId(): String = "o" + ++last

fun round(count: Int) = count

fun Order.total(): Int = price

fun <T> provide(make: Any): T = TODO()

fun pick(id: String): Order? = null
