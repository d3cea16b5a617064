use shelf::store::Kind::{self, Fast};

fn main() {
    let memory = shelf::Memory::new();
    let kinds = vec![Fast, Kind::Slow(1)];
    println!("{}", dotenvy::var("SHELF_HOME").unwrap());
}
