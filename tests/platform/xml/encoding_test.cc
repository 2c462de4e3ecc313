// SPDX-License-Identifier: MIT
// Documents in different encodings.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";

bool OpensAsUtf16(std::u16string_view text) {
  const bool little = Opens(Utf16(text, ByteOrder::kLittle));
  EXPECT_EQ(little, Opens(Utf16(text, ByteOrder::kBig)));
  return little;
}

std::string Declared(const std::string& encoding, const std::string& text) {
  return "<?xml version='1.0' encoding='" + encoding + "'?><a>" + text + "</a>";
}

TEST(XmlEncodingTest, Utf8IsTheDefault) {
  const std::string text = "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF4\x8F\xBF\xBD\x7F";
  EXPECT_EQ(RootText("<a>" + text + "</a>"), text);
  EXPECT_EQ(RootText("<?xml version='1.0'?><a>" + text + "</a>"), text);
  EXPECT_EQ(RootText(Declared("UTF-8", text)), text);
  EXPECT_EQ(RootText(Declared("utf-8", text)), text);
}

TEST(XmlEncodingTest, Utf8MayBeginWithAMark) {
  EXPECT_EQ(RootText(kUtf8Mark + std::string("<a>\xC3\xA9</a>")), "\xC3\xA9");
  EXPECT_EQ(RootText(kUtf8Mark + Declared("UTF-8", "\xC3\xA9")), "\xC3\xA9");
  EXPECT_FALSE(Opens(std::string(kUtf8Mark) + kUtf8Mark + "<a/>"));
  EXPECT_FALSE(Opens(kUtf8Mark));
}

TEST(XmlEncodingTest, Utf16OfBothByteOrders) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    EXPECT_EQ(RootText(Utf16(u"<a>x\u00E9\u20AC\U0001F600\u4100</a>", order)),
              "x\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xE4\x84\x80");
    for (const std::u16string name : {u"UTF-16", u"utf-16"}) {
      const std::u16string text = u"<?xml version='1.0' encoding='" + name + u"'?><a>\u00E9</a>";
      EXPECT_EQ(RootText(Utf16(text, order)), "\xC3\xA9");
    }
  }
}

TEST(XmlEncodingTest, Utf16NamesAndAttributes) {
  OpenDocument document(
      Utf16(u"<\u4E00 xmlns='urn:\u00E9'><b \u00FC='\U0001F600'/></\u4E00>", ByteOrder::kBig),
      "urn:\xC3\xA9:\xE4\xB8\x80");
  ASSERT_TRUE(document.Find("urn:\xC3\xA9:b"));
  EXPECT_EQ(document.Attribute("\xC3\xBC"), "\xF0\x9F\x98\x80");
}

TEST(XmlEncodingTest, Latin1) {
  EXPECT_EQ(RootText(Declared("ISO-8859-1", "\xE9\x80\xFF\xA0x")),
            "\xC3\xA9\xC2\x80\xC3\xBF\xC2\xA0x");
  EXPECT_EQ(RootText(Declared("iso-8859-1", "\xC3\xA9")), "\xC3\x83\xC2\xA9");
  OpenDocument document("<?xml version='1.0' encoding='ISO-8859-1'?><\xE9 n\xFC='\xDF'/>",
                        "\xC3\xA9");
  EXPECT_EQ(document.Attribute("n\xC3\xBC"), "\xC3\x9F");
}

TEST(XmlEncodingTest, Ascii) {
  EXPECT_EQ(RootText(Declared("US-ASCII", "x&#233;")), "x\xC3\xA9");
  EXPECT_EQ(RootText(Declared("us-ascii", "x")), "x");
  EXPECT_FALSE(Opens(Declared("US-ASCII", "\xC3\xA9")));
  EXPECT_FALSE(Opens(Declared("US-ASCII", "\x80")));
}

TEST(XmlEncodingTest, OthersAreRefused) {
  for (const char* const encoding :
       {"windows-1252", "ISO-8859-2", "ISO-8859-15", "Shift_JIS", "EUC-JP", "GB2312", "GB18030",
        "Big5", "KOI8-R", "UTF-7", "UTF-32", "UCS-4", "IBM037", "x-unknown", "8", ""}) {
    EXPECT_FALSE(Opens(Declared(encoding, "x"))) << encoding;
  }
  EXPECT_FALSE(Opens(std::string("\0\0\xFE\xFF\0\0\0<\0\0\0a\0\0\0/\0\0\0>", 20)));
  EXPECT_FALSE(Opens(std::string("\xFF\xFE\0\0<\0\0\0a\0\0\0/\0\0\0>\0\0\0", 20)));
  EXPECT_FALSE(Opens("\x4C\x81\x61\x6E"));  // <a/> in EBCDIC.
}

TEST(XmlEncodingTest, WrongLabelsAreRefused) {
  EXPECT_FALSE(Opens(Declared("UTF-16", "x")));
  EXPECT_FALSE(Opens(Declared("UTF-8", "\xE9")));
  EXPECT_FALSE(OpensAsUtf16(u"<?xml version='1.0' encoding='UTF-8'?><a/>"));
}

TEST(XmlEncodingTest, IllFormedUtf8IsRefused) {
  for (const std::string& text :
       Split("\x80|\xBF|\xC3|\xC3x|\xC0\x80|\xC0\xBC|\xC1\xBF|\xE0\x80\xBC|\xE0\x9F\xBF|"
             "\xE2\x82|\xE2\x82x|\xED\xA0\x80|\xED\xBF\xBF|\xED\xA0\xBD\xED\xB8\x80|"
             "\xF0\x80\x80\xBC|\xF0\x8F\xBF\xBF|\xF0\x9F\x98|\xF4\x90\x80\x80|\xF5\x80\x80\x80|"
             "\xF8\x88\x80\x80\x80|\xFE|\xFF")) {
    EXPECT_FALSE(Opens("<a>" + text + "</a>")) << text;
    EXPECT_FALSE(Opens("<a n='" + text + "'/>")) << text;
    EXPECT_FALSE(Opens("<a><![CDATA[" + text + "]]></a>")) << text;
    EXPECT_FALSE(Opens("<a><!--" + text + "--></a>")) << text;
    EXPECT_FALSE(Opens("<a><?p " + text + "?></a>")) << text;
    EXPECT_FALSE(Opens("<a" + text + "/>")) << text;
    EXPECT_FALSE(Opens("<a/>" + text)) << text;
    EXPECT_FALSE(Opens("<!DOCTYPE a [<?p " + text + "?>]><a/>")) << text;
  }
}

TEST(XmlEncodingTest, IllFormedUtf16IsRefused) {
  const char16_t high = 0xD83D;
  const char16_t low = 0xDE00;
  for (const std::u16string& bad :
       {std::u16string{high}, std::u16string{low}, std::u16string{low, high},
        std::u16string{high, u'x'}, std::u16string{high, high}, std::u16string{high, high, low}}) {
    EXPECT_FALSE(OpensAsUtf16(u"<a>" + bad + u"</a>"));
    EXPECT_FALSE(OpensAsUtf16(u"<a>" + bad + u" text</a>"));
    EXPECT_FALSE(OpensAsUtf16(u"<a n='" + bad + u" text'/>"));
    EXPECT_FALSE(OpensAsUtf16(u"<a><![CDATA[" + bad + u" text]]></a>"));
    EXPECT_FALSE(OpensAsUtf16(u"<a><!--" + bad + u" text--></a>"));
    EXPECT_FALSE(OpensAsUtf16(u"<a><?p " + bad + u" text?></a>"));
    EXPECT_FALSE(OpensAsUtf16(u"<a/><!--" + bad + u" text-->"));
    EXPECT_FALSE(OpensAsUtf16(u"<!DOCTYPE a [<?p " + bad + u" text?>]><a/>"));
  }
  EXPECT_TRUE(OpensAsUtf16(u"<a n='\U0001F600'><!--\U0001F600-->\U0001F600</a>"));
}

TEST(XmlEncodingTest, HalfAUnitIsRefused) {
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    const std::string bytes = Utf16(u"<a/>", order);
    EXPECT_TRUE(Opens(bytes));
    EXPECT_FALSE(Opens(bytes + '\0'));
    EXPECT_FALSE(Opens(bytes + ' '));
    EXPECT_FALSE(Opens(bytes.substr(0, bytes.size() - 1)));
  }
}

TEST(XmlEncodingTest, CharactersOutsideXmlAreRefused) {
  for (int code = 0; code < 0x20; ++code) {
    const bool is_space = code == '\t' || code == '\n' || code == '\r';
    const std::string text(1, static_cast<char>(code));
    EXPECT_EQ(Opens("<a>" + text + "</a>"), is_space) << code;
    EXPECT_EQ(Opens("<a n='" + text + "'/>"), is_space) << code;
    EXPECT_EQ(Opens("<a/>" + text), is_space) << code;
    const std::u16string unit(1, static_cast<char16_t>(code));
    EXPECT_EQ(OpensAsUtf16(u"<a>" + unit + u"</a>"), is_space) << code;
  }
  EXPECT_FALSE(Opens("<a>\xEF\xBF\xBE</a>"));
  EXPECT_FALSE(Opens("<a>\xEF\xBF\xBF</a>"));
  EXPECT_FALSE(OpensAsUtf16(u"<a>\uFFFE</a>"));
  EXPECT_FALSE(OpensAsUtf16(u"<a>\uFFFF</a>"));
  EXPECT_TRUE(OpensAsUtf16(u"<a>\uFFFD</a>"));
}

}  // namespace
}  // namespace stowra_test
