'use strict';
var EventEmitter = require('events').EventEmitter;
var Store = require('./store');
var { NotFound, wrap: wrapped } = require('./errors');
const errors = require('./errors');
const isAdmin = require('./guards').isAdmin;

exports = module.exports = createApp;
exports.Store = Store;
exports.listen = function listen(port) {
  return createApp(port || process.env.PORT);
};

function createApp(name) {
  const app = new Store(name);
  app.use(require('../routes/items'));
  app.use('/admin', isAdmin, wrapped(handler));
  app.on('error', function (err) {
    if (err instanceof NotFound || err instanceof errors.Gone) throw errors.fail(err);
  });
  return app;
}

function handler(Store, next) {
  next(new Store());
  Store.open();
}

class Guard extends EventEmitter {
  static open() {
    return Guard;
  }
}
Guard.open();
