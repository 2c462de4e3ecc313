// SPDX-License-Identifier: MIT
// A locale whose decimal point is a comma.

#ifndef TESTS_SUPPORT_COMMA_LOCALE_H_
#define TESTS_SUPPORT_COMMA_LOCALE_H_

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "tests/support/temporary_folder.h"

namespace stowra_test {

// Sets such a locale for the process and goes back to "C" at the end. If none is installed, it
// compiles one that has only that decimal point. If that fails, the test fails.
class CommaLocale {
 public:
  CommaLocale() {
    const bool found = Set("de_DE.UTF-8") || Set("fr_FR.UTF-8") || (Compile() && Set("comma"));
    EXPECT_TRUE(found) << "no locale has a decimal comma, and localedef made none";
  }
  ~CommaLocale() { std::setlocale(LC_ALL, "C"); }

  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  // Whether the C library still writes decimal commas on this thread.
  static bool IsInForce() {
    char text[8];
    std::snprintf(text, sizeof(text), "%.1f", 1.5);
    return std::string(text) == "1,5";
  }

 private:
  static bool Set(const char* name) {
    return std::setlocale(LC_ALL, name) != nullptr && IsInForce();
  }

  bool Compile() const {
    const std::string folder = folder_.path().string();
    std::ofstream charmap(folder + "/charmap");
    charmap << "<code_set_name> ANSI_X3.4-1968\n<comment_char> %\n<escape_char> /\nCHARMAP\n";
    for (int code = 0; code < 128; ++code) {
      char line[40];
      std::snprintf(line, sizeof(line), "<U%04X> /x%02x a character\n", unsigned(code),
                    unsigned(code));
      charmap << line;
    }
    charmap << "END CHARMAP\n";
    charmap.close();
    std::ofstream source(folder + "/source");
    source << "LC_NUMERIC\ndecimal_point \"<U002C>\"\nthousands_sep \"\"\ngrouping -1\n"
              "END LC_NUMERIC\n";
    source.close();
    // localedef warns of each missing category and writes the locale.
    const std::string command = "cd '" + folder +
                                "' && localedef -c --no-archive -f ./charmap -i ./source ./comma "
                                ">messages 2>&1 || test -e comma/LC_NUMERIC";
    return std::system(command.c_str()) == 0 && setenv("LOCPATH", folder.c_str(), 1) == 0;
  }

  const TemporaryFolder folder_;
};

}  // namespace stowra_test

#endif  // TESTS_SUPPORT_COMMA_LOCALE_H_
