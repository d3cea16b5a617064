import React, { memo } from 'react';
import type { Item } from '@shop/types';
import router, { routes as table } from '@shop/routes';
import { Row, type RowProps } from './Row';

type Props = { items: Item[] } & RowProps;

export function List({ items, onPick: Row2 }: Props) {
  const Row = table;
  return <Row2 first={items[0]} wire={router} rows={Row} />;
}

export const Table = memo<Props>(({ items }) => (
  <table>
    {items.map((item) => (
      <Row key={item.id} item={item} render={List}>
        <React.Fragment />
      </Row>
    ))}
  </table>
));

export default () => <Table items={[]} />;
