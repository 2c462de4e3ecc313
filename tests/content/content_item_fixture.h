// SPDX-License-Identifier: MIT
// Fixture for the tests of ContentItem.

#ifndef TESTS_CONTENT_CONTENT_ITEM_FIXTURE_H_
#define TESTS_CONTENT_CONTENT_ITEM_FIXTURE_H_

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common_stowraapi/platform/xml_input.h"
#include "tests/content/feed_text.h"

namespace stowra_test {

class ContentItemFixture : public testing::Test {
 protected:
  // Reads the entry into `item`.
  bool Load(const Parts& entry) { return LoadEntry(entry.text()); }

  bool LoadEntry(const std::string& entry) {
    Bytes bytes(FeedOf(entry));
    const std::unique_ptr<ovrant::IXMLInput> reader(
        ovrant::Get_IXMLInput(bytes.data(), bytes.length()));
    if (reader == nullptr || !reader->FindElement("http://www.w3.org/2005/Atom:feed") ||
        !reader->FindElement("http://www.w3.org/2005/Atom:entry")) {
      ADD_FAILURE() << "no entry: " << entry;
      return false;
    }
    const bool loaded = item.Load(reader.get());
    EXPECT_TRUE(reader->LeaveElement("http://www.w3.org/2005/Atom:entry"));
    return loaded;
  }

  ContentItem item;
};

}  // namespace stowra_test

#endif  // TESTS_CONTENT_CONTENT_ITEM_FIXTURE_H_
