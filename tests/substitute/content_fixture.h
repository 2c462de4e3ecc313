// SPDX-License-Identifier: MIT
// Fixture for the tests of the content service.

#ifndef TESTS_SUBSTITUTE_CONTENT_FIXTURE_H_
#define TESTS_SUBSTITUTE_CONTENT_FIXTURE_H_

#include <string>
#include <vector>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/substitute/fixture.h"
#include "tests/substitute/text_operations.h"
#include "tests/substitute/xml_script.h"
#include "tests/support/text.h"

namespace stowra_substitute {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using stowra_test::Bytes;

// An element that only holds others, one that only holds a text, and one that only has attributes.
inline XmlElement Parent(std::string name, std::vector<XmlElement> children) {
  return {std::move(name), {}, "", std::move(children)};
}
inline XmlElement Leaf(std::string name, std::string text) {
  return {std::move(name), {}, std::move(text), {}};
}
inline XmlElement With(std::string name, XmlElement::Attributes attributes) {
  return {std::move(name), std::move(attributes), "", {}};
}

// After a test no reader may be left, every scripted document must have been opened, and no
// call may have broken the contract.
class ContentTest : public SubstituteTest {
 protected:
  ~ContentTest() override {
    SetLeaveResult(true);
    SetFailingOperation("");
    SetAbsentIndex(static_cast<unsigned long>(-1));
    EXPECT_EQ(CountReaders(), 0);
    EXPECT_EQ(CountScriptedDocuments(), 0);
    EXPECT_EQ(TakeReaderMisuses(), 0);
    EXPECT_EQ(TakeTextMisuses(), 0);
  }
};

}  // namespace stowra_substitute

#endif  // TESTS_SUBSTITUTE_CONTENT_FIXTURE_H_
