// Runs a fuzz target over files, and over the files of folders, where no fuzzer does. Fails when
// there is none to run over.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// A folder may be missing: it holds nothing then.
void AppendFiles(const std::filesystem::path& path, std::vector<std::filesystem::path>& files) {
  if (!std::filesystem::is_directory(path)) {
    if (std::filesystem::exists(path)) files.push_back(path);
    return;
  }
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
}

// A copy of its exact size on the heap, so that a read beyond its end is seen.
bool RunOver(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    std::fprintf(stderr, "%s cannot be read\n", path.c_str());
    return false;
  }
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  // Whoever looks for the input that ended the program finds it as the last one here.
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);
  return LLVMFuzzerTestOneInput(bytes.data(), bytes.size()) == 0;
}

}  // namespace

int main(int count, char** arguments) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < count; ++i) AppendFiles(arguments[i], files);
  std::sort(files.begin(), files.end());
  if (files.empty()) {
    std::fprintf(stderr, "usage: %s FILE_OR_FOLDER...; there is no file\n", arguments[0]);
    return 2;
  }
  for (const auto& file : files) {
    if (!RunOver(file)) return 1;
  }
  std::printf("%zu inputs\n", files.size());
  return 0;
}
