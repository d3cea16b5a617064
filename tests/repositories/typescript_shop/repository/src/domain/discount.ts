export abstract class Discount {
  abstract apply(sum: number): number;
}
