// SPDX-License-Identifier: MIT
#include "emulator/markup_writer.h"

#include "emulator/web_address.h"
#include "tests/emulator/emulator_test.h"
#include "tests/emulator/xml_tree.h"

namespace stowra_emulator {
namespace {

TEST(EscapeMarkupTest, EscapesMarkup) {
  EXPECT_EQ(EscapeMarkup("<a href=\"x\">&amp;</a>"),
            "&lt;a href=&quot;x&quot;&gt;&amp;amp;&lt;/a&gt;");
  EXPECT_EQ(EscapeMarkup("\t\r\n"), "&#9;&#13;&#10;");
  EXPECT_EQ(EscapeMarkup(""), "");
}

TEST(EscapeMarkupTest, DropsCharactersThatXmlForbids) {
  EXPECT_EQ(EscapeMarkup(std::string("a\0\x01\x08\x0B\x1Fz", 7)), "az");
  EXPECT_EQ(EscapeMarkup("a\uFFFE\uFFFFb"), "ab");
  EXPECT_EQ(EscapeMarkup("\x7F\uFFFD\U0010FFFF"), "\x7F\uFFFD\U0010FFFF");
}

TEST(EscapeMarkupTest, ReplacesBytesThatAreNotUtf8) {
  EXPECT_EQ(EscapeMarkup("a\xFFz"), "a\uFFFDz");
  EXPECT_EQ(EscapeMarkup("\xC3"), "\uFFFD") << "cut short";
  EXPECT_EQ(EscapeMarkup("\xC0\xBC"), "\uFFFD\uFFFD") << "an overlong form of two bytes";
  EXPECT_EQ(EscapeMarkup("\xE0\x9F\xBF"), "\uFFFD\uFFFD\uFFFD") << "an overlong form of three";
  EXPECT_EQ(EscapeMarkup("\xF0\x8F\xBF\xBF"), "\uFFFD\uFFFD\uFFFD\uFFFD") << "of four";
  EXPECT_EQ(EscapeMarkup("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD") << "a surrogate";
  EXPECT_EQ(EscapeMarkup("\xF4\x90\x80\x80"), "\uFFFD\uFFFD\uFFFD\uFFFD") << "above U+10FFFF";
  EXPECT_EQ(EscapeMarkup("é€😀"), "é€😀");
}

TEST(MarkupWriterTest, WritesElementALineAndClosesOpenElements) {
  MarkupWriter writer("<?xml version=\"1.0\"?>");
  writer.Begin("a", {{"k", "\"&"}});
  writer.Begin("b");
  writer.Element("c", "x<y");
  writer.Empty("d", {{"e", "f"}, {"g", "h"}});
  writer.End();
  writer.Begin("p");
  writer.Text("see ");
  writer.Element("i", "it");
  EXPECT_EQ(writer.Finish(),
            "<?xml version=\"1.0\"?>\n"
            "<a k=\"&quot;&amp;\">\n"
            "  <b>\n"
            "    <c>x&lt;y</c>\n"
            "    <d e=\"f\" g=\"h\"/>\n"
            "  </b>\n"
            "  <p>see <i>it</i></p>\n"
            "</a>\n");
}

TEST(MarkupWriterTest, ParserReadsTheSameValues) {
  const std::string value = "a\r\n\tb <&>\"' é";
  MarkupWriter writer("");
  writer.Element("a", value, {{"k", value}});
  const XmlElement root = ParseXml(writer.Finish().substr(1));
  EXPECT_EQ(root.text, value);
  EXPECT_EQ(root.Attribute("k"), value);
}

TEST(WebAddressTest, DecodesWhatItEncodes) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::string encoded = PercentEncode(all);
  EXPECT_EQ(PercentDecode(encoded), all);
  EXPECT_EQ(encoded.find_first_not_of("%ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                      "0123456789-._~"),
            std::string::npos);
  EXPECT_EQ(PercentEncode("a/b+c d", "/+"), "a/b+c%20d");
}

TEST(WebAddressTest, KeepsPercentSignThatBeginsNoEscape) {
  EXPECT_EQ(PercentDecode("%"), "%");
  EXPECT_EQ(PercentDecode("%4"), "%4");
  EXPECT_EQ(PercentDecode("100%!%zz%4g%41%e9"), "100%!%zz%4gA\xE9");
  EXPECT_EQ(PercentDecode("a+b"), "a+b");
}

}  // namespace
}  // namespace stowra_emulator
