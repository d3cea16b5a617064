package shop.core

import org.scalatest.funsuite.AnyFunSuite

class OrderSpec extends AnyFunSuite {
  test("fails") {
    assertThrows[OrderException] { Order.empty.total(Nil) }
    assert(classOf[Line] != null)
  }
}
