export interface Order {
  id: string;
  lines: OrderLine[];
}

export interface OrderLine {
  article: string;
  count: number;
}
