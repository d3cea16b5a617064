import { price } from "../src/domain/price";
import { DISCOUNT_PLUGINS } from "../src/domain/discounts";
import { order } from "./orders";

test("a tenth off", () => expect(price(order(10), DISCOUNT_PLUGINS)).toBe(9));
