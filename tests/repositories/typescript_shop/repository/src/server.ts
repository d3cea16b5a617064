import { config } from "./config";
import { cancel, list, place } from "./handlers";

const routes = { cancel, list, place };

export function serve() {
  return { port: config.port, routes };
}
