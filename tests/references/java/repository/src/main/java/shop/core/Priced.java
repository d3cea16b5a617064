package shop.core;

public sealed interface Priced permits Order, Item {
  int price();

  interface Listener<T extends Priced> {
    void priced(T what) throws PricingException;
  }
}
