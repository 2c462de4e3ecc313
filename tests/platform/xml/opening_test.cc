// SPDX-License-Identifier: MIT
// What Get_IXMLInput opens, and the end of a reader.

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/xml/document.h"
#include "tests/support/failing_malloc.h"

namespace stowra_test {
namespace {

using ovrant::End_IXMLInput;
using ovrant::Get_IXMLInput;
using ovrant::IXMLInput;

const unsigned char kSmall[] = {'<', 'a', '/', '>'};

// A document with every kind of markup, which ends with its last byte.
const char kSample[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<!-- one --><?pi two?>\n"
    "<!DOCTYPE f:feed PUBLIC \"-//X//Y\" \"nowhere.dtd\" [\n"
    "  <!ELEMENT f:feed (a | (b, c)*)*> <!NOTATION n SYSTEM 'x'>\n"
    "  <!-- three --> <?pi four?>\n"
    "]>\n"
    "<f:feed xmlns:f='urn:f' xmlns='urn:d'><a n='1 &lt; &#50;' m=\"y\">x\xC3\xA9&amp; more</a>\n"
    "<b><![CDATA[<]] >]]></b><c/><!-- five --><?pi six?>\xF0\x9F\x98\x80</f:feed >";

TEST(XmlOpeningTest, TheSampleOpens) {
  OpenDocument document(kSample, "urn:f:feed");
  EXPECT_EQ(document.Text("urn:d:a"), "x\xC3\xA9& more");
  EXPECT_EQ(document.Text("urn:d:b"), "<]] >");
  ASSERT_TRUE(document.Find("urn:d:a"));
  EXPECT_EQ(document.Attribute("n"), "1 < 2");
  EXPECT_EQ(document.Attribute("m"), "y");
}

TEST(XmlOpeningTest, EveryTruncationIsRefused) {
  const std::string sample = kSample;
  for (std::size_t length = 0; length < sample.size(); ++length) {
    EXPECT_FALSE(Opens(std::string_view(sample).substr(0, length))) << length;
  }
}

TEST(XmlOpeningTest, MarkupMayFollowTheRootElement) {
  for (const char* const after :
       {"\n", " \t\r\n", "<!-- c -->", "<?pi x?>", "\n<!-- c -->\n<?p?>"}) {
    EXPECT_TRUE(Opens(std::string(kSample) + after)) << after;
  }
}

TEST(XmlOpeningTest, NothingElseMayFollowIt) {
  for (const char* const after : {"x", "<", "<b/>", "</a>", "&#32;", "&lt;", "<![CDATA[]]>", "<!--",
                                  "<?", "<!DOCTYPE a>", "<?xml version='1.0'?>", "\x80", "]]>"}) {
    EXPECT_FALSE(Opens(std::string(kSample) + after)) << after;
    EXPECT_FALSE(Opens(std::string(kSample) + "\n" + after)) << after;
  }
  EXPECT_FALSE(Opens(std::string(kSample) + '\0'));
  EXPECT_FALSE(Opens(std::string(kSample) + "\n\n" + '\0'));
}

TEST(XmlOpeningTest, OnlyMarkupMayComeBeforeTheRootElement) {
  EXPECT_TRUE(Opens("\n<!-- c --><?p?>\n<a/>"));
  for (const char* const before :
       {"x", "\n<?xml version='1.0'?>", "&#32;", "<![CDATA[]]>", "<!-- c -- -->", "<?XML?>"}) {
    EXPECT_FALSE(Opens(std::string(before) + "<a/>")) << before;
  }
  EXPECT_FALSE(Opens(std::string(1, '\0') + "<a/>"));
}

TEST(XmlOpeningTest, DocumentsWithoutARootElementAreRefused) {
  for (const char* const bytes : {"", " ", "\n\n", "x", "<!-- c -->", "<?xml version='1.0'?>",
                                  "<!DOCTYPE a>", "{\"json\":1}", "<!DOCTYPE html><br>"}) {
    EXPECT_FALSE(Opens(bytes)) << bytes;
  }
}

TEST(XmlOpeningTest, IllFormedMarkupIsRefused) {
  for (const std::string& bytes :
       Split("<a>|</a>|<a></b>|<a><b></a></b>|<a/|<a n/>|<a n=1/>|<a n='<'/>|<a n='1'm='2'/>|"
             "< a/>|<a/ >|<1/>|<a>]]></a>|<a><!-- -- --></a>|<a><!-- ---></a>|<a><?xml x?></a>|"
             "<a><![cdata[]]></a>|<a><!DOCTYPE b></a>|<a n=\"1'/>|<A></a>|<a>\r\n</ a>|"
             "<!DOCTYPE a [<!ELEMENT a>]><a/>|<!DOCTYPE a [<!NOTATION n>]><a/>|"
             "<!DOCTYPE a [x]><a/>")) {
    EXPECT_FALSE(Opens(bytes)) << bytes;
  }
}

TEST(XmlOpeningTest, NullAndNoBytesAreRefused) {
  for (const int size : {0, 4, -1}) EXPECT_EQ(Get_IXMLInput(nullptr, size), nullptr) << size;
  for (const int size : {0, -1, -4, INT_MIN})
    EXPECT_EQ(Get_IXMLInput(kSmall, size), nullptr) << size;
}

TEST(XmlOpeningTest, ReadsNoFurtherThanTheLength) {
  const std::string bytes = "<a/>junk";
  const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
  IXMLInput* reader = Get_IXMLInput(data, 4);
  EXPECT_NE(reader, nullptr);
  End_IXMLInput(&reader);
  EXPECT_EQ(Get_IXMLInput(data, 5), nullptr);
}

TEST(XmlOpeningTest, EndSetsTheReaderToNull) {
  IXMLInput* reader = Get_IXMLInput(kSmall, 4);
  ASSERT_NE(reader, nullptr);
  End_IXMLInput(&reader);
  EXPECT_EQ(reader, nullptr);
  End_IXMLInput(&reader);
  EXPECT_EQ(reader, nullptr);
}

TEST(XmlOpeningTest, ElementsMayHave256Levels) {
  const auto nested = [](std::size_t levels) {
    return Repeated("<a>", levels) + Repeated("</a>", levels);
  };
  EXPECT_FALSE(Opens(nested(257)));
  EXPECT_FALSE(Opens(Repeated("<a>", 256) + "<b/>" + Repeated("</a>", 256)));
  OpenDocument document(nested(256));
  for (int level = 0; level < 256; ++level) ASSERT_TRUE(document.Find("a")) << level;
  EXPECT_FALSE(document.Find("a"));
  for (int level = 0; level < 256; ++level) ASSERT_TRUE(document.Leave("a")) << level;
  EXPECT_FALSE(document.Leave("a"));
}

TEST(XmlOpeningTest, ADocumentMayHaveOneGibibyte) {
  constexpr int kGibibyte = 1 << 30;
  std::string bytes(kGibibyte + 1, '\n');
  bytes.replace(0, 4, "<a/>");
  const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
  IXMLInput* reader = Get_IXMLInput(data, kGibibyte);
  EXPECT_NE(reader, nullptr);
  End_IXMLInput(&reader);
  EXPECT_EQ(Get_IXMLInput(data, kGibibyte + 1), nullptr);
#ifdef STOWRA_COUNTS_MEMORY
  // Without the limit the parser's buffer would fail, but only after the tree has been made.
  const MemoryWatch watch;
  IXMLInput* const refused = Get_IXMLInput(data, kGibibyte + 1);
  const std::size_t peak = watch.peak();
  EXPECT_EQ(refused, nullptr);
  EXPECT_EQ(peak, 0U);
#endif
}

TEST(XmlOpeningTest, ReadersOfTheSameBytesAreIndependent) {
  const std::string bytes = kSample;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&bytes] {
      for (int again = 0; again < 50; ++again) {
        XmlDocument one(bytes);
        XmlDocument two(bytes);
        ASSERT_TRUE(one.Find("urn:f:feed"));
        EXPECT_EQ(two.Text("urn:d:a"), std::nullopt);
        EXPECT_EQ(one.Text("urn:d:b"), "<]] >");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace stowra_test
