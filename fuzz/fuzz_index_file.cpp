// Damage to a stored index. The input is a list of edits to its file and to the write-ahead log
// that a killed process left: five bytes (what, where in three, how long), then the new bytes.
// Whatever they do, the next run gives the answer of a fresh index or says which file is at fault.

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>

#include "fuzz/require.h"
#include "fuzz/scratch_directory.h"
#include "kestrix/index/refresh/indexer.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/corrupt_index.h"
#include "kestrix/store/facts_codec.h"
#include "tests/index/dump.h"

namespace kestrix::index {
namespace {

namespace fs = std::filesystem;
using test::require;

std::string bytes_of(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class Damage {
 public:
  Damage() {
    write_repository("x = 1\n");
    // Files that are younger than a tick of the clock are read again at every refresh.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    refresh(options("index"));
    // While another connection reads, the log keeps what a refresh writes.
    const SQLite::Database reader(scratch_ / "index", SQLite::OPEN_READONLY);
    require(reader.tableExists("file"), "there is an index");
    write_repository("import pkg.b\nclass LaterError(Exception): pass\n");
    refresh(options("index"));
    database_ = bytes_of(scratch_ / "index");
    log_ = bytes_of(scratch_ / "index-wal");
    require(!log_.empty(), "there is a log");
    // The index is behind the files: what it holds of the others goes into the answer.
    scratch_.write("repo/pkg/d.py", "from pkg.b import Base\nclass D(Base): pass\n");
    expected_ = dump(*refresh_and_open(options("fresh")).index);
  }

  void apply(std::string_view edits) const {
    std::string database = database_;
    std::string log = log_;
    while (edits.size() >= kHeader) {
      const auto byte = [&](std::size_t i) -> std::size_t {
        return static_cast<unsigned char>(edits[i]);
      };
      std::string& bytes = (byte(0) & 1U) != 0 ? log : database;
      const std::size_t place = byte(1) << 16U | byte(2) << 8U | byte(3);
      const std::size_t at = bytes.empty() ? 0 : place % bytes.size();
      const std::size_t length = std::min<std::size_t>(byte(4) % 32, edits.size() - kHeader);
      if ((byte(0) & 2U) != 0) bytes.resize(at);
      bytes.replace(at, std::min(length, bytes.size() - at), edits.substr(kHeader, length));
      edits.remove_prefix(kHeader + length);
    }
    scratch_.write("index", database);
    scratch_.write("index-wal", log);
    fs::remove(scratch_ / "index-shm");
    check();
  }

 private:
  static constexpr std::size_t kHeader = 5;

  void write_repository(std::string_view later) const {
    scratch_.write("repo/pkg/__init__.py", "");
    scratch_.write("repo/pkg/a.py", "from pkg.b import Base\nclass A(Base): pass\n");
    scratch_.write("repo/pkg/b.py", "class Base: pass\n");
    scratch_.write("repo/pkg/c.py", later);
    scratch_.write("repo/doc.md", "text\n");
  }

  IndexOptions options(std::string_view file) const {
    IndexOptions options;
    options.root = scratch_ / "repo";
    options.file = scratch_ / file;
    options.threads = 1;
    options.lock_timeout = std::chrono::seconds(1);
    return options;
  }

  void check() const {
    for (int run = 0; run < 2; ++run) {
      try {
        require(dump(*refresh_and_open(options("index")).index) == expected_,
                "a damaged index answers as a fresh one");
      } catch (const Error& error) {
        const std::string file = (scratch_ / "index").native();
        require(std::string_view(error.what()).starts_with(file), "the message names the file");
      }
    }
  }

  test::ScratchDirectory scratch_;
  std::string database_;
  std::string log_;
  std::string expected_;
};

// Facts behind a seal that fits, as no disk but a forger leaves them.
void decode(std::string_view bytes) {
  Digest digest;
  const FactsOrigin origin{"path", {7}};
  digest.add(origin.path);
  digest.add(origin.content);
  digest.add(bytes);
  std::string sealed;
  auto seal = digest.value();
  for (; seal >= 0x80; seal >>= 7U) sealed += static_cast<char>(seal | 0x80U);
  sealed += static_cast<char>(seal);
  sealed += bytes;
  try {
    const FileFacts facts = decode_facts(sealed, origin);
    require(decode_facts(encode_facts(facts, origin), origin) == facts,
            "facts can be stored again");
  } catch (const CorruptIndex&) {
  }
}

}  // namespace
}  // namespace kestrix::index

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix::index;  // NOLINT(google-build-using-namespace)
  static const Damage damage;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  damage.apply(input);
  decode(input);
  return 0;
}
