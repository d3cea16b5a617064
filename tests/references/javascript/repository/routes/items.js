const createApp = require('..');
const { isKnown, Gone } = require('../lib/guards');
const config = require('config');

const HANDLERS = {};
HANDLERS['list'] = list;
HANDLERS[isKnown.name] = function () {
  const list = createApp.listen(config.get('port'));
  list();
  return list instanceof Gone;
};

function list() {
  return createApp('items');
}

module.exports = function () {
  return { list, handlers: HANDLERS, 'lib/store.js': Gone };
};
module.exports.later = require('../lib/guards').later(createApp.Store);
