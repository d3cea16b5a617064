class NotFound extends Error {}
class Gone extends NotFound {}
const gone = require('gone');

exports.fail = function (cause) {
  return gone(new NotFound(cause)) || exports.gone(exports.later);
};
function wrap(fn) {
  return fn;
}
exports.NotFound = NotFound;
module.exports.Gone = Gone;
exports.wrap = wrap;
exports.gone = () => new Gone();
exports.later = require('later');
