const { EventEmitter } = require('events');
const { Gone } = require('./errors');

class Store extends EventEmitter {
  #items = new Map();
  limit = 10;
  get(key) {
    if (key === 'gone') throw new Gone();
    return this.#items.get(key);
  }
}

function Cursor(store) {
  this.store = store;
}
Cursor.prototype.next = function next() {
  return Cursor.open(this.store);
};
Cursor.open = (store) => new Cursor(store);

module.exports = Store;
