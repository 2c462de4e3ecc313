// SPDX-License-Identifier: MIT
// The fixture for tests of the services.

#ifndef TESTS_EMULATOR_CONTENT_FIXTURE_H_
#define TESTS_EMULATOR_CONTENT_FIXTURE_H_

#include <nlohmann/json_fwd.hpp>

#include "tests/emulator/raw_client.h"
#include "tests/emulator/xml_tree.h"

namespace stowra_emulator {

constexpr const char* kQmf = "application/vnd.brevix.qmf";

class ContentTest : public testing::Test {
 protected:
  // Gets a path with its query, or a whole address of this emulator.
  RawResponse Get(const std::string& target, int status = 200, const std::string& fields = "");

  XmlElement GetFeed(const std::string& target);

  // The titles in a feed, and the number of all results.
  std::vector<std::string> TitlesFor(const std::string& query);
  int CountOf(const std::string& query);

  // The root element of a web page.
  XmlElement GetPage(const std::string& target);

  nlohmann::json GetJson(const std::string& target, int status = 200);

  // The text "error" of the answer, which must have this status.
  std::string GetError(const std::string& target, int status);

  Emulator emulator_;
};

std::vector<const XmlElement*> Entries(const XmlElement& feed);
std::vector<std::string> Titles(const XmlElement& feed);
int Total(const XmlElement& feed);

// The title of a feed or an entry.
std::string TitleOf(const XmlElement& element);

// The files of an entry.
std::vector<const XmlElement*> Contents(const XmlElement& entry);

// The mids of the feed's models.
std::vector<std::string> Models(const XmlElement& feed);

}  // namespace stowra_emulator

#endif  // TESTS_EMULATOR_CONTENT_FIXTURE_H_
