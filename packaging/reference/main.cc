// SPDX-License-Identifier: MIT
// stowra_reference FOLDER SECTIONS VERSION DATE
//
// Writes the man pages and shell completions of the programs to FOLDER. They come from the
// programs' own set-up of CLI11. SECTIONS is the folder with the ends of the man pages.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "emulator/command_line.h"
#include "host/command_line.h"
#include "packaging/reference/formats.h"

namespace stowra_reference {
namespace {

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void WriteFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

void WriteAll(const CLI::App& app, char** arguments) {
  const std::filesystem::path folder = arguments[1];
  const Command program = ReadCommand(app);
  const std::string end = ReadFile(std::filesystem::path(arguments[2]) / (program.name + ".roff"));
  WriteFile(folder / (program.name + ".1"), ManPage(program, arguments[3], arguments[4], end));
  WriteFile(folder / (program.name + ".bash"), BashCompletion(program));
  WriteFile(folder / ("_" + program.name), ZshCompletion(program));
  WriteFile(folder / (program.name + ".fish"), FishCompletion(program));
}

}  // namespace
}  // namespace stowra_reference

int main(int argc, char** argv) {
  if (argc != 5) {
    std::cerr << "usage: stowra_reference FOLDER SECTIONS VERSION DATE\n";
    return 2;
  }
  try {
    const auto write = [argv](const CLI::App& app) { stowra_reference::WriteAll(app, argv); };
    stowra::DescribeCommandLine(write);
    stowra_emulator::DescribeCommandLine(write);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "stowra_reference: " << error.what() << "\n";
    return 1;
  }
}
