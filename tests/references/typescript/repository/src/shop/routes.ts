import { Store } from '@shop/store';
import * as types from '@shop/types';
import makeRouter from 'router';

export const list = async (store: Store) => types.kinds[types.Kind.Plain];
export function show(kind: types.Kind): string;
export function show(kind: types.Kind) {
  switch (kind) {
    case types.Kind.Plain:
      return list(Store.open('x') as Store);
    default:
      return fail(kind);
  }
  function fail(list: unknown) {
    return list();
  }
}

const router = makeRouter({ types });
router.get('/items', list);
router.use(show ? show : list, `${show}`);

export const routes = [
  { path: '/items', handler: list },
  { path: '/kinds', handler: show, page: () => import('../ui/List') },
];
export default router;
