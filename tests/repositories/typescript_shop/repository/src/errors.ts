export class ShopError extends Error {}

export class UnknownOrderError extends ShopError {}
