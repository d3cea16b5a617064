pub mod error;
pub mod store;
mod routes;

pub use error::AppError as Error;
pub use store::*;

#[macro_export]
macro_rules! handlers {
    ($($handler:path),*) => { vec![$($handler),*] };
}

pub fn start() -> Result<(), Error> {
    let key = std::env::var("SHELF_KEY").map_err(|_| Error::NoKey)?;
    routes::all(&key)
}
