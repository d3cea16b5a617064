export { cancel } from "./cancel.js";
export { list } from "./list.js";
export { place } from "./place.js";
