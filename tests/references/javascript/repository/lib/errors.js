class NotFound extends Error {}
class Gone extends NotFound {}
exports.fail = function (cause) {
  return new NotFound(cause);
};
function wrap(fn) {
  return fn;
}
exports.NotFound = NotFound;
module.exports.Gone = Gone;
exports.wrap = wrap;
