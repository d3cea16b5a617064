import { UnknownOrderError } from "@shop/errors";

export function cancel(id: string) {
  throw new UnknownOrderError(id);
}
