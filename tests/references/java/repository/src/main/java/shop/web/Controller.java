package shop.web;

import static shop.core.Order.LIMIT;
import static shop.core.Order.Status.*;

import java.util.ArrayList;
import java.util.List;
import java.util.function.Function;
import java.util.function.Supplier;
import org.framework.Value;
import org.framework.web.ExceptionHandler;
import org.framework.web.Get;
import org.framework.web.Rest;
import shop.core.*;
import shop.core.Order.Line;

@Rest(path = "/orders", shows = Order.class)
public class Controller implements Priced.Listener<Order> {
  @Value("${orders.page:10}")
  private int page;

  private final List<Function<String, Order>> finders = List.of(this::find, Finder::byName);
  private final Supplier<List<Line>> empty = ArrayList::new;
  private final Priced.Listener<Item> log =
      new Priced.Listener<>() {
        public void priced(Item item) throws PricingException {
          find(item.toString());
        }
      };

  @Get(path = "/find")
  public Order find(@Named("id") String id) {
    String find = System.getenv("ORDERS_FILE");
    try {
      return cached(find == null ? id : find);
    } catch (PricingException | IllegalStateException e) {
      throw failed(e);
    }
  }

  private Order cached(String id) {
    Order order = Order.of(new Line(new Item(), LIMIT));
    shop.odd.Order other = null;
    Item[] items = {new Item()};
    class Local {}
    new Local();
    return order.price() > page ? (Order) order : Finder.of(items).<Order>byName(id);
  }

  private RuntimeException failed(Exception e) {
    return switch (e) {
      case PricingException pricing when pricing.getCause() != null -> pricing;
      case NotFound(Order order, var reason) -> new RuntimeException(reason);
      default -> throw new IllegalStateException(e);
    };
  }

  @ExceptionHandler(NotFound.class)
  public void priced(Order what) throws PricingException {
    switch (what.status()) {
      case NEW -> log.priced(null);
      case PAID -> log(PAID);
    }
  }

  private void log(Order.Status status) {
    Runnable task = () -> log(status.next());
    status.log();
  }
}
