package shop.core;

public abstract class PricingException extends RuntimeException {
  protected PricingException(String message) {
    super(message);
  }

  protected static String line(Object what) {
    return "line " + what;
  }
}

class InvalidOrder extends PricingException {
  static final class Empty extends InvalidOrder {
    Empty() {
      super(line(Order.LIMIT));
    }
  }

  InvalidOrder(String message) {
    super(message);
  }
}
