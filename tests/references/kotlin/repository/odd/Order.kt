package shop.odd

annotation class Order(val by: String)

class T

class Box<T>(val held: T) {
  fun <U : Order> open(key: U): U = key
}

fun round(count: Int) = count
