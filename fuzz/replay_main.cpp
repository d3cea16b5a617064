// Runs a fuzz target on the files named, or those in the folders named, where libFuzzer is not at
// hand. Fails when there is nothing to run.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
  const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(data.data(), data.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> inputs;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path(argv[i]);
    if (!std::filesystem::is_directory(path)) {
      inputs.push_back(path);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
      if (entry.is_regular_file()) inputs.push_back(entry.path());
    }
  }
  for (const auto& path : inputs) replay(path);
  std::printf("%zu inputs\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}
