use crate::store::{Item, Memory, Store};
use crate::{handlers, Error};
use axum::routing::get;

type Handler = fn(&dyn Store) -> Result<Item, Error>;

const HANDLERS: [(&str, Handler); 2] = [("first", first), ("other", other)];

pub(crate) fn all(key: &str) -> Result<(), Error> {
    let store = Memory::new();
    let router = axum::Router::new().route("/first", get(first));
    for handler in handlers![first, other] {
        serve(&store, handler)?;
    }
    router.serve(key, HANDLERS)
}

fn serve(store: &impl Store, handler: Handler) -> Result<(), Error> {
    match handler(store) {
        Ok(item) => keep(item),
        Err(Error::Missing(key)) | Err(Error::Store(key)) => keep(key),
        Err(error) if matches!(error, Error::NoKey) => Err(error),
        Err(other) => Err(other),
    }
}

fn keep<S: Store>(_: S) -> Result<(), Error> {
    if let Some(error) = last().downcast_ref::<crate::error::StoreError>() {
        return Err(Error::Store(error.clone()));
    }
    Ok(())
}

fn first(store: &dyn Store) -> Result<Item, Error> {
    store.get("first")
}

fn other(_: &dyn Store) -> Result<Item, Error> {
    bail!(Error::Missing("other".into()))
}

fn last() -> Box<dyn std::any::Any> {
    Box::new(Item { name: env!("CARGO_PKG_NAME").into() })
}
