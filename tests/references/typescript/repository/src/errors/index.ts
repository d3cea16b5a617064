export * from './base';
export { default as ShopError } from './base';
export * as base from './base';
export { Missing } from 'elsewhere';
