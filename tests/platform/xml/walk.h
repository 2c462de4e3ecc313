// SPDX-License-Identifier: MIT
// Documents and what a reader finds on its way through them.

#ifndef TESTS_PLATFORM_XML_WALK_H_
#define TESTS_PLATFORM_XML_WALK_H_

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/platform/xml/document.h"

namespace stowra_test {

// A document, and steps through it, separated by " | ". A step with "!" must fail.
//
//   +NAME        !+NAME   FindElement
//   >NAME        !>NAME   NextElement
//   -NAME        !-NAME   LeaveElement
//   @NAME=VALUE  !@NAME   GetAttribute
//   .NAME=VALUE  !.NAME   GetElementText
//   #NAME=VALUE  !#NAME   GetElementInt
//   ?NAME=VALUE  !?NAME   GetElementBool, which gives 0 or 1
struct Walk {
  const char* name;  // of the test
  std::string document;
  std::string steps;
};

inline void PrintTo(const Walk& walk, std::ostream* out) { *out << walk.name; }

// The part behind the last "=", since names may be URIs.
inline std::string TakeValue(std::string& step) {
  const std::size_t equals = step.rfind('=');
  const std::string value = step.substr(equals + 1);
  step.erase(equals);
  return value;
}

inline void TakeStep(XmlDocument& document, std::string step) {
  SCOPED_TRACE(step);
  const bool succeeds = step[0] != '!';
  if (!succeeds) step.erase(0, 1);
  const char operation = step[0];
  const bool moves = operation == '+' || operation == '>' || operation == '-';
  const std::string value = succeeds && !moves ? TakeValue(step) : "";
  const std::string name = step.substr(1);
  std::optional<std::string> found;
  if (operation == '@') found = document.Attribute(name);
  if (operation == '.') found = document.Text(name);
  if (operation == '#') {
    if (const auto number = document.Int(name)) found = std::to_string(*number);
  }
  if (operation == '?') {
    if (const auto flag = document.Bool(name)) found = *flag ? "1" : "0";
  }
  if ((operation == '+' && document.Find(name)) || (operation == '>' && document.Next(name)) ||
      (operation == '-' && document.Leave(name))) {
    found = "";
  }
  EXPECT_EQ(found, succeeds ? std::optional(value) : std::nullopt);
}

inline void Follow(const Walk& walk) {
  XmlDocument document(walk.document);
  ASSERT_TRUE(document.is_open());
  for (std::size_t begin = 0; begin != std::string::npos;) {
    const std::size_t end = walk.steps.find(" | ", begin);
    TakeStep(document, walk.steps.substr(begin, end - begin));
    begin = end == std::string::npos ? end : end + 3;
  }
}

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_XML_WALK_H_
