package shop.web

import javax.inject.Inject
import play.api.mvc._
import shop.core
import shop.core.Order.{empty, Limit}
import shop.core.{Order, Status => State}

trait Handler {
  def run(order: Order): Unit
}

trait Store { self: Orders =>
  val retries: Int
  def save(order: Order): Unit = log(order)
}

@deprecated("old", "1")
class Orders @Inject() (val components: ControllerComponents, config: Configuration)
    extends AbstractController(components)
    with Store {
  private val key = sys.env.getOrElse("SHOP_KEY", config.get[String]("shop.key"))
  val retries = Limit

  def index = Action { request =>
    val order = empty
    run(Order.handlers.head)
    Ok(render(order))
  }

  private def render[A <: core.Line](order: Order): String = order.status match {
    case State.New => "web.views.New"
    case _         => throw NotFoundException(order)
  }

  private def run(handler: Handler): Unit = handler.run(empty)
}

case class NotFoundException(order: Order) extends Exception
