use clap::Parser;
use shelf::{start, Error};

#[derive(Parser)]
struct Options {
    #[arg(long, env = "SHELF_PORT")]
    port: u16,
}

fn main() -> Result<(), Error> {
    let options = Options::parse();
    start()
}
