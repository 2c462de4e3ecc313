// SPDX-License-Identifier: MIT
// A main program for builds without a fuzzer. Runs a fuzz target on files and on the files in
// folders. Fails if it finds no file.

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

// Treats a missing path as an empty folder.
void AppendFiles(const std::filesystem::path& path, std::vector<std::filesystem::path>& files) {
  if (!std::filesystem::is_directory(path)) {
    if (std::filesystem::exists(path)) files.push_back(path);
    return;
  }
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
}

// Copies the file to a heap block of the exact size, so that a sanitizer sees a read past the end.
bool RunOver(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return false;
  }
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  // If the target crashes, the last printed path is the input to blame.
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
    std::fprintf(stderr, "no input file found\nusage: %s FILE_OR_FOLDER...\n", arguments[0]);
    return 2;
  }
  for (const auto& file : files) {
    if (!RunOver(file)) return 1;
  }
  std::printf("%zu inputs\n", files.size());
  return 0;
}
