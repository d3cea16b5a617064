mod memory;

pub use self::memory::Memory;
use crate::error::{AppError, StoreError as Failure};

pub trait Store: Send {
    fn get(&self, key: &str) -> Result<Item, AppError>;
    fn name(&self) -> String {
        String::from("store")
    }
}

#[derive(Clone, serde::Serialize)]
pub struct Item {
    pub name: String,
}

pub enum Kind {
    Fast,
    Slow(u8),
    Named { name: String },
}

pub static KINDS: &[Kind] = &[Kind::Fast, Kind::Slow(2)];

pub fn check(kind: &Kind, item: Option<Item>) -> Result<Item, Failure> {
    match kind {
        Kind::Fast => Err(Failure::full()),
        Kind::Slow(speed) if *speed > 3 => Err(Failure { code: 3 }),
        Kind::Named { name } => Ok(Item { name: name.clone() }),
        _ => item.ok_or(Failure { code: 4 }),
    }
}
