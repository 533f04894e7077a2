// Replays saved inputs through a harness without libFuzzer: every regular
// file of each folder named on the command line, in name order, is handed to
// LLVMFuzzerTestOneInput once. A failed property aborts, so the test fails.
#include <dirent.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));

namespace {

std::vector<std::string> filesIn(const std::string& folder) {
  std::vector<std::string> files;
  if (DIR* dir = opendir(folder.c_str())) {
    while (const dirent* e = readdir(dir))
      if (e->d_type == DT_REG) files.push_back(folder + "/" + e->d_name);
    closedir(dir);
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::string& file : filesIn(argv[i])) {
      std::ifstream in(file, std::ios::binary);
      std::istreambuf_iterator<char> begin(in), end;
      std::vector<char> bytes(begin, end);
      std::fprintf(stderr, "replay %s\n", file.c_str());
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++count;
    }
  }
  std::fprintf(stderr, "%zu inputs replayed\n", count);
  return count > 0 ? 0 : 1;
}
