import type { Order } from "@shop/entities";

export function list(): Order[] {
  return [];
}
