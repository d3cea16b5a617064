use std::fmt;
use thiserror::Error;

#[derive(Debug, Error)]
pub enum AppError {
    #[error("no key")]
    NoKey,
    #[error("missing {0}")]
    Missing(String),
    #[error(transparent)]
    Store(#[from] StoreError),
}

pub struct StoreError {
    pub code: u16,
}

impl StoreError {
    pub fn full() -> Self {
        StoreError { code: LIMIT }
    }
}

impl std::error::Error for StoreError {}

impl fmt::Display for StoreError {
    fn fmt(&self, f: &mut fmt::Formatter<'_>) -> fmt::Result {
        write!(f, "{}", self.code)
    }
}

const LIMIT: u16 = 7;
