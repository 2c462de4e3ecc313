// SPDX-License-Identifier: MIT
// The fixture for tests of the content service.

#ifndef TESTS_EMULATOR_CONTENT_FIXTURE_H_
#define TESTS_EMULATOR_CONTENT_FIXTURE_H_

#include <gtest/gtest.h>
#include <httplib.h>

#include <string>
#include <vector>

#include "emulator/emulator.h"
#include "tests/emulator/xml_tree.h"

namespace stowra_emulator {

class ContentTest : public testing::Test {
 protected:
  // Sends addresses without encoding them.
  ContentTest() { client_.set_url_encode(false); }

  // Gets a path with its query, or a whole address of this emulator.
  httplib::Response Get(const std::string& target, int status = 200);

  XmlElement GetFeed(const std::string& target);

  // The root element of a web page.
  XmlElement GetPage(const std::string& target);

  // The text "error" of the answer, which must have this status.
  std::string GetError(const std::string& target, int status);

  Emulator emulator_;
  httplib::Client client_{emulator_.url()};
};

std::vector<const XmlElement*> Entries(const XmlElement& feed);
std::vector<std::string> Titles(const XmlElement& feed);
int Total(const XmlElement& feed);

// The value of `mid=` in an address.
std::string MidOf(const std::string& address);

// The mids of the feed's models.
std::vector<std::string> Models(const XmlElement& feed);

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_CONTENT_FIXTURE_H_
