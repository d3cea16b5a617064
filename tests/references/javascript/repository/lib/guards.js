function isAdmin() {}
function isUser() {}

module.exports = {
  isAdmin,
  isKnown: isUser,
  ...require('./errors'),
};
