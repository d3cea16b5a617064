import { place } from "./place";
import { order } from "../../test/orders";

test("places", () => expect(place(order(10))).toBe(9));
