export type Id = string | number;
export type Item = { id: Id; kind: Kind; owner: { name: string } };
export interface Keyed<T extends Item> extends Named {
  get(key: Id): T;
  find?: (Kind: string) => typeof kinds;
}
interface Named {
  name: 'Item';
}
export enum Kind {
  Plain = 'plain',
  Fancy = 'fancy',
}
export const kinds: Record<Kind, Item[]> = { [Kind.Plain]: [], fancy: [] };
