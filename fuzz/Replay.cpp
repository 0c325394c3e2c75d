// Runs a target over files, one after another, without libFuzzer: any compiler builds it, so that
// the tests replay the committed inputs under every sanitizer.
//   veral3_fuzz_replay_TARGET FILE|FOLDER ...
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesOf(const fs::path& argument) {
  if (!fs::is_directory(argument)) return {argument};
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(argument)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<fs::path> files;
  for (int i = 1; i < argc; ++i) {
    const std::vector<fs::path> more = FilesOf(argv[i]);
    files.insert(files.end(), more.begin(), more.end());
  }
  if (files.empty()) {
    std::fprintf(stderr, "no inputs\n");
    return 2;
  }
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  for (const fs::path& path : files) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
      std::fprintf(stderr, "%s cannot be read\n", path.c_str());
      return 2;
    }
    // Said before, so that a run that ends here tells at which input.
    std::printf("%s (%zu bytes)\n", path.filename().c_str(), bytes.size());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  return 0;
}
