package shop.core;

public final class Item implements Priced, Comparable<Item> {
  private final int price = Integer.getInteger("shop.price", 1);

  public int price() {
    return price;
  }

  public int compareTo(Item other) {
    return other instanceof Item item && item.price > price ? 1 : 0;
  }
}

class Ids {
  private static int last;

  static String next() {
    return "o" + ++last;
  }
}
