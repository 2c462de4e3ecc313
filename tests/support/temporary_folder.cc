// SPDX-License-Identifier: MIT
#include "tests/support/temporary_folder.h"

#include <stdlib.h>

#include <stdexcept>
#include <string>
#include <system_error>

namespace stowra_test {

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "stowra-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder: " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace stowra_test
