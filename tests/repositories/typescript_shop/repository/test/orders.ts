import type { Order } from "../src/entities";

export const order = (count: number): Order => ({ id: "1", lines: [{ article: "pen", count }] });
