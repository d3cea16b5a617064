#include "tests/languages/resolver_cases.h"

namespace kestrix::index {
namespace {

using testing::ElementsAre;

const std::string kManifest = "[package]\nname = \"my-app\" # ours\n";

TEST(RustResolver, FindsModules) {
  check({
      {"beside a root and a mod.rs, else in a folder of the file's name",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "mod a;\nmod b;\nmod r#type;"},
        {"src/a.rs", "mod c;"},
        {"src/a/c.rs", ""},
        {"src/b/mod.rs", "mod d;"},
        {"src/b/d.rs", ""},
        {"src/c.rs", ""},
        {"src/type.rs", ""}},
       {"src/lib.rs -> src/a.rs", "src/lib.rs -> src/b/mod.rs", "src/lib.rs -> src/type.rs",
        "src/a.rs -> src/a/c.rs", "src/b/mod.rs -> src/b/d.rs"}},
      {"at another path, and within another module",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs",
         "#[cfg(unix)]\n#[path = \"os/unix.rs\"]\nmod imp;\nmod outer { mod inner; }\n"
         "use crate::imp::x;\nuse crate::outer::inner::y;"},
        {"src/os/unix.rs", "pub fn x() {}"},
        {"src/outer/inner.rs", "pub fn y() {}"}},
       {"src/lib.rs -> src/os/unix.rs", "src/lib.rs -> src/outer/inner.rs"}},
      {"declared within a macro",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "cfg_io! {\n  pub mod io;\n}"},
        {"src/io.rs", ""}},
       {"src/lib.rs -> src/io.rs"}},
      {"a gap is counted",
       {{"Cargo.toml", kManifest}, {"src/lib.rs", "mod gone;"}},
       {"unresolved 1"}},
      {"without a manifest",
       {{"src/main.rs", "mod a;"}, {"src/a.rs", ""}},
       {"src/main.rs -> src/a.rs"}},
  });
}

TEST(RustResolver, FollowsPaths) {
  const std::string lib = "mod a; mod b;";
  check({
      {"crate, self, super and nested lists",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", lib},
        {"src/a/mod.rs", "mod c;\nuse self::c::{X, deep::{self, Y}};"},
        {"src/a/c.rs", "pub mod deep;\nuse super::super::b::{self as other};"},
        {"src/a/c/deep.rs", "use crate::{a::c, b::*};"},
        {"src/b.rs", "fn f() { crate::a::c::call(); }\nmod tests { use super::super::a; }"}},
       {"src/lib.rs -> src/a/mod.rs", "src/lib.rs -> src/b.rs", "src/a/mod.rs -> src/a/c.rs",
        "src/a/mod.rs -> src/a/c/deep.rs", "src/a/c.rs -> src/a/c/deep.rs",
        "src/a/c.rs -> src/b.rs", "src/a/c/deep.rs -> src/a/c.rs", "src/a/c/deep.rs -> src/b.rs",
        "src/b.rs -> src/a/c.rs", "src/b.rs -> src/a/mod.rs"}},
      {"from a module that was brought in, in code and in macros",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", lib},
        {"src/a/mod.rs", "pub mod c;"},
        {"src/a/c.rs", "pub fn f() {}"},
        {"src/b.rs", "use crate::a;\nfn g() { log!(\"{}\", a::c::f()); }"}},
       {"src/lib.rs -> src/a/mod.rs", "src/lib.rs -> src/b.rs", "src/a/mod.rs -> src/a/c.rs",
        "src/b.rs -> src/a/mod.rs", "src/b.rs -> src/a/c.rs"}},
      {"through pub use to what declares the name, by name and with all others",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "mod a;\npub mod b;\npub use a::Renamed as Thing;\npub use self::b::*;"},
        {"src/a.rs", "pub struct Renamed;"},
        {"src/b.rs", "mod c;\npub use c::*;"},
        {"src/b/c.rs", "pub enum Far { A }\nuse crate::Thing;"},
        {"tests/t.rs", "use my_app::Far::A;\nuse my_app::Gone;"}},
       {"src/lib.rs -> src/a.rs", "src/lib.rs -> src/b.rs", "src/b.rs -> src/b/c.rs",
        "src/b/c.rs -> src/lib.rs", "src/b/c.rs -> src/a.rs", "tests/t.rs -> src/lib.rs",
        "tests/t.rs -> src/b/c.rs"}},
      {"declared for one configuration, handed on for another",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs",
         "mod pool;\nmod user;\nif_rt! { pub use pool::spawn; }\n"
         "if_not_rt! { pub fn spawn() {} }"},
        {"src/pool.rs", "pub fn spawn() {}"},
        {"src/user.rs", "use crate::spawn;"}},
       {"src/lib.rs -> src/pool.rs", "src/lib.rs -> src/user.rs", "src/user.rs -> src/lib.rs",
        "src/user.rs -> src/pool.rs"}},
      {"named like a word of the language",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "mod r#type;\nmod user;\npub use r#type::Thing;"},
        {"src/type.rs", "pub struct Thing; pub fn r#match() {}"},
        {"src/user.rs", "use crate::Thing;\nfn f() { crate::r#type::r#match(); }"}},
       {"src/lib.rs -> src/type.rs", "src/lib.rs -> src/user.rs", "src/user.rs -> src/lib.rs",
        "src/user.rs -> src/type.rs"}},
      {"modules that hand each other's names on end",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "mod a;\nmod b;\nuse a::X;"},
        {"src/a.rs", "pub use crate::b::*;"},
        {"src/b.rs", "pub use crate::a::*;"}},
       {"src/lib.rs -> src/a.rs", "src/lib.rs -> src/b.rs", "src/a.rs -> src/b.rs",
        "src/b.rs -> src/a.rs"}},
  });
}

TEST(RustResolver, KnowsCrates) {
  check({
      {"of the workspace, with - as _, renamed, and by the library's own name",
       {{"Cargo.toml", "[workspace]\nmembers = [\"crates/*\"]\n"},
        {"crates/app/Cargo.toml",
         "[package]\nname = \"app\"\n[dependencies]\nshort = { path = \"../x\", package = "
         "\"data-store\" }\n[dependencies.long]\npackage = \"own-name\"\n"},
        {"crates/app/src/main.rs",
         "use data_store::get;\nuse short::put;\nuse called::x;\nuse serde::Serialize;\n"
         "extern crate util;"},
        {"crates/store/Cargo.toml", "[package]\nname = \"data-store\""},
        {"crates/store/src/lib.rs", "pub fn get() {}"},
        {"crates/own/Cargo.toml",
         "[package]\nname = \"own-name\"\n[lib]\nname = \"called\"\npath = \"lib/root.rs\""},
        {"crates/own/lib/root.rs", ""},
        {"crates/util/Cargo.toml", "[package]\nname = \"util\""},
        {"crates/util/src/lib.rs", ""}},
       {"crates/app/src/main.rs -> crates/store/src/lib.rs",
        "crates/app/src/main.rs -> crates/own/lib/root.rs",
        "crates/app/src/main.rs -> crates/util/src/lib.rs"}},
      {"renamed in each way to write it, and by the workspace",
       {{"Cargo.toml",
         "[workspace.dependencies]\nd = { package = \"helper\" } # x\n[workspace]\nmembers = []\n"},
        {"app/Cargo.toml",
         "package.name = \"app\"\n[dependencies]\na = { package = 'helper' }\nb.package = "
         "\"helper\"\nd.workspace = true\n# e = { package = \"helper\" }\n"
         "[target.'cfg(unix)'.'dev-dependencies'.\"c\"]\npackage = '''helper'''\n"},
        {"app/src/main.rs", "mod m1;\nmod m2;\nmod m3;\nmod m4;\nmod m5;"},
        {"app/src/m1.rs", "use a::x;"},
        {"app/src/m2.rs", "use b::x;"},
        {"app/src/m3.rs", "use c::x;"},
        {"app/src/m4.rs", "use d::x;"},
        {"app/src/m5.rs", "use e::x;"},
        {"helper/Cargo.toml", "[package]\nname = 'helper'"},
        {"helper/src/lib.rs", "pub fn x() {}"}},
       {"app/src/main.rs -> app/src/m1.rs", "app/src/main.rs -> app/src/m2.rs",
        "app/src/main.rs -> app/src/m3.rs", "app/src/main.rs -> app/src/m4.rs",
        "app/src/main.rs -> app/src/m5.rs", "app/src/m1.rs -> helper/src/lib.rs",
        "app/src/m2.rs -> helper/src/lib.rs", "app/src/m3.rs -> helper/src/lib.rs",
        "app/src/m4.rs -> helper/src/lib.rs"}},
      {"renamed by a use declaration, and modules brought in with all others",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "mod parts;\nuse parts::*;\nfn f() { inner::g(); }"},
        {"src/parts.rs", "pub mod inner;"},
        {"src/parts/inner.rs", "pub fn g() {}"},
        {"src/bin/tool.rs", "use my_app as app;\nuse app::f;"}},
       {"src/lib.rs -> src/parts.rs", "src/lib.rs -> src/parts/inner.rs",
        "src/parts.rs -> src/parts/inner.rs", "src/bin/tool.rs -> src/lib.rs"}},
      {"tests, examples, programs and benches are crates of their own",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", ""},
        {"tests/all.rs", "mod common;\nuse my_app::x;"},
        {"tests/common/mod.rs", "use super::y;"},
        {"examples/demo/main.rs", "mod part;\nuse crate::part::x;"},
        {"examples/demo/part.rs", ""},
        {"src/bin/tool.rs", "use my_app::z;"}},
       {"tests/all.rs -> tests/common/mod.rs", "tests/all.rs -> src/lib.rs",
        "tests/common/mod.rs -> tests/all.rs", "examples/demo/main.rs -> examples/demo/part.rs",
        "src/bin/tool.rs -> src/lib.rs"}},
      {"a library is no module of that name elsewhere",
       {{"Cargo.toml", kManifest},
        {"src/lib.rs", "mod a;\nuse serde::Serialize;"},
        {"src/a.rs", "mod serde;"},
        {"src/a/serde.rs", ""},
        {"serde.rs", ""}},
       {"src/lib.rs -> src/a.rs", "src/a.rs -> src/a/serde.rs"}},
  });
}

TEST(RustResolver, WeighsByUse) {
  EXPECT_THAT(weighted_edges_of({{"Cargo.toml", kManifest},
                                 {"src/lib.rs",
                                  "mod a;\nuse a::{X, y as z};\n"
                                  "fn f(x: X) -> X { z(); crate::a::w(); crate::a::w() }"},
                                 {"src/a.rs", "pub struct X; pub fn y() {} pub fn w() {}"}}),
              ElementsAre("src/lib.rs -> src/a.rs *10"));
}

}  // namespace
}  // namespace kestrix::index
