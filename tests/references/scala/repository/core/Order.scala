package shop
package core

import java.util.{UUID => Id}
import shop.money.Money
import util._

sealed trait Status
object Status {
  case object New extends Status
  final case class Paid(by: String) extends Status
}

trait Priced[A] {
  def total(items: Seq[A]): Money
  def name: String = "priced"
}

case class Line(id: Id, price: Money)

class OrderException(message: String) extends RuntimeException(message)

case class Order(lines: Seq[Line], status: Status = Status.New) extends Base(Order.Limit) with Priced[Line] {
  def total(items: Seq[Line]): Money = {
    val sum = items.map(_.price).foldLeft(Money.zero)(_ plus _)
    if (sum == Money.zero) throw new OrderException(label("empty"))
    sum
  }

  def pay(store: Store): Either[String, Order] =
    try {
      store.save(this)
      status match {
        case Status.New            => Right(copy(status = Status.Paid("me")))
        case Status.Paid(by)       => Left(by)
        case other: Status         => Left(name)
      }
    } catch {
      case e: OrderException => Left(e.getMessage)
    }
}

object Order extends App {
  val Limit = 5
  private val Currencies = List("EUR", "USD")
  def empty: Order = Order(Nil)
  def handlers = List(new Handler { def run(order: Order): Unit = order.pay(null) })
}

abstract class Base(limit: Int) {
  protected def abstracted: Int
}
