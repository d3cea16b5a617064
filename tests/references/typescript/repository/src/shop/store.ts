import { Injectable, type Scope } from '@nestjs/common';
import { EventEmitter } from 'events';
import type { Item, Keyed as Key } from './types';
import { NotFound, ShopError, Missing, base } from '../errors';

@Injectable()
export class Store extends EventEmitter implements Key<Item> {
  private items: Map<string, Item> = new Map();
  static readonly KINDS = ['a', 'b'];

  @Log('get') get(key: string): Item {
    if (!this.items.has(key)) throw new NotFound(key);
    return this.items.get(key)!;
  }
  find(item: string): Item | undefined;
  find(key: unknown) {
    try {
      return this.get(String(key));
    } catch (NotFound) {
      if (NotFound instanceof ShopError) throw NotFound;
      return Promise.reject(new base.Gone());
    }
  }
  static open(scope: Scope) {
    return new Store().get(process.env.SHOP_KEY ?? import.meta.env.VITE_KEY.trim());
  }
}

function Log(name: string) {
  const { SHOP_LOG, SHOP_LEVEL: level = 'info' } = process.env;
  return process.env['SHOP_' + name] || process.env['SHOP_ALL'] || SHOP_LOG || level;
}

export function fail(): never {
  throw new Missing();
}
