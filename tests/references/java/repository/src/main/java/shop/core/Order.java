package shop.core;

import java.util.List;
import java.util.Map;

public record Order(String id, List<Line> lines, Status status) implements Priced {
  public static final int LIMIT = 20;
  static final Map<String, Status> BY_NAME = Map.of("new", Status.NEW, "paid", Status.PAID);

  public Order {
    if (lines.isEmpty()) throw new InvalidOrder("empty");
  }

  public enum Status {
    NEW("n") {
      @Override
      Status next() {
        return PAID;
      }
    },
    PAID(Codes.PAID);

    private final String code;

    Status(String code) {
      this.code = code;
    }

    Status next() {
      return this;
    }
  }

  static class Codes {
    static final String PAID = "p";
  }

  public record Line(Item item, int count) {}

  @Override
  public int price() {
    int price = 0;
    for (Line line : lines) price += price(line);
    return price;
  }

  private static int price(Line line) {
    return line.item().price() * line.count();
  }

  public static Order of(Line... lines) {
    return new Order(Ids.next(), List.of(lines), Status.NEW);
  }
}
