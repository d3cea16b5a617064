package shop.odd;

/** The name of another package's type; T is a type, too. */
@interface Order {
  Class<?> by() default T.class;
}

class T {}

class Box<T> {
  T held;

  <U extends Order> U open(U key) {
    return key;
  }
}
