export default abstract class ShopError extends Error {
  constructor(readonly code: string) {
    super(code);
  }
  abstract describe(): string;
}

export class NotFound extends ShopError {
  describe = () => this.code;
}

class Hidden {}
export { Hidden as Gone };
