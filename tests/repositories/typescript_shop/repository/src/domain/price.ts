import type { Order } from "../entities";
import type { Discount } from "./discount";

export function price(order: Order, discounts: Discount[]): number {
  const full = order.lines.reduce((sum, line) => sum + line.count, 0);
  return discounts.reduce((sum, discount) => discount.apply(sum), full);
}
