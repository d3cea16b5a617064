module.exports = require('./lib/app');
