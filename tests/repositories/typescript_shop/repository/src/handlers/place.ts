import type { Order } from "@shop/entities";
import { price } from "@shop/domain/price";
import { DISCOUNT_PLUGINS } from "@shop/domain/discounts";

export function place(order: Order) {
  return price(order, DISCOUNT_PLUGINS);
}
