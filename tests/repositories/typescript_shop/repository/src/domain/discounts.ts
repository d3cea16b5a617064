import { Discount } from "./discount";

class Tenth extends Discount {
  apply(sum: number) {
    return sum * 0.9;
  }
}

export const DISCOUNT_PLUGINS: Discount[] = [new Tenth()];
