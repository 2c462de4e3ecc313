// SPDX-License-Identifier: MIT
// The XML reader.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "common_stowraapi/platform/xml_input.h"
#include "tests/allocation/each_failure.h"
#include "tests/platform/xml/document.h"

#ifdef STOWRA_FAILS_ALLOCATIONS

namespace stowra_test {
namespace {

using ovrant::Get_IXMLInput;
using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;

// A document whose parts need allocations of every kind.
std::string LargeDocument() {
  std::string bytes =
      "<!DOCTYPE a SYSTEM 'nowhere' [<!ELEMENT a (b|c)*><!NOTATION n SYSTEM 'x'>]>"
      "<a xmlns:p='urn:p'>";
  for (int i = 0; i < 60; ++i) {
    const std::string number = std::to_string(i);
    bytes += "<p:element" + number + " attribute" + number + "='value " + number + "'>text " +
             number + "&lt;<i/><![CDATA[ and more ]]></p:element" + number + ">";
  }
  return bytes + "<text>" + std::string(50'000, 'x') + "</text></a>";
}

struct Opened {
  void Open(Bytes& bytes) { reader.reset(Get_IXMLInput(bytes.data(), bytes.length())); }

  std::unique_ptr<IXMLInput> reader;
};

TEST(XmlAllocationTest, OpeningGivesNullAndThrowsNothing) {
  for (Bytes bytes : {Bytes(LargeDocument()), Bytes(Utf16(UnitsOf(Text(LargeDocument()))))}) {
    const auto check = [&](Opened& opened, Outcome outcome) {
      EXPECT_FALSE(outcome.threw);
      EXPECT_EQ(opened.reader == nullptr, outcome.failed());
      opened.Open(bytes);
      ASSERT_NE(opened.reader, nullptr);
      EXPECT_TRUE(opened.reader->FindElement("a"));
      EXPECT_TRUE(opened.reader->FindElement("text"));
    };
    EXPECT_GT(FailEachAllocation<Opened>([&](Opened& opened) { opened.Open(bytes); }, check), 40);
  }
}

TEST(XmlAllocationTest, OpeningWhatIsNoDocumentGivesNull) {
  for (Bytes bytes : {Bytes("<a><b></a>"), Bytes(LargeDocument() + "<"),
                      Bytes("<a>" + std::string(1000, '<') + "</a>")}) {
    const auto check = [](Opened& opened, Outcome outcome) {
      EXPECT_FALSE(outcome.threw);
      EXPECT_EQ(opened.reader, nullptr);
    };
    EXPECT_GT(FailEachAllocation<Opened>([&](Opened& opened) { opened.Open(bytes); }, check), 10);
  }
}

// Names and values here are too long for any buffer inside a string.
const std::string kLong(300, 'n');
const std::string kInt(300, 'i');
const std::string kBool(300, 'b');
const std::string kValue(300, 'v');
const ovrant_ustring kLongName = Text(kLong);
const ovrant_ustring kIntName = Text(kInt);
const ovrant_ustring kBoolName = Text(kBool);

struct Texts {
  Texts() { EXPECT_TRUE(document.Find(kLong)); }

  XmlDocument document{"<" + kLong + " " + kLong + "='" + kValue + "'><b>" + kValue + "</b><" +
                       kInt + ">" + std::string(300, '0') + "1</" + kInt + "><" + kBool + ">" +
                       std::string(300, ' ') + "true</" + kBool + "></" + kLong + ">"};
  IXMLInput& reader = document.reader();
  ovrant_ustring text = "before";
  int number = -77;
  bool flag = false;
};

// `ask` throws whenever it has no memory; `is_before` must hold then, and the same question is
// answered afterwards.
template <typename Ask, typename IsBefore>
void FailToAsk(const Ask& ask, const IsBefore& is_before) {
  const auto check = [&](Texts& texts, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(is_before(texts), outcome.threw);
    EXPECT_EQ(outcome.result, !outcome.threw);
    EXPECT_TRUE(ask(texts.reader, texts));
    EXPECT_FALSE(is_before(texts));
  };
  const auto work = [&](Texts& texts) { return ask(texts.reader, texts); };
  EXPECT_GT(FailEachAllocation<Texts>(work, check), 0);
}

TEST(XmlAllocationTest, GettersThrowAndChangeNothing) {
  const auto has_old_text = [](const Texts& texts) { return texts.text == "before"; };
  FailToAsk([](auto& reader, auto& to) { return reader.GetAttribute(kLongName, to.text); },
            has_old_text);
  FailToAsk([](auto& reader, auto& to) { return reader.GetElementText("b", to.text); },
            has_old_text);
  FailToAsk([](auto& reader, auto& to) { return reader.GetElementInt(kIntName, to.number); },
            [](const Texts& texts) { return texts.number == -77; });
  FailToAsk([](auto& reader, auto& to) { return reader.GetElementBool(kBoolName, to.flag); },
            [](const Texts& texts) { return !texts.flag; });
}

// Many children. The reader stands at their parent or at the first of them.
struct Siblings {
  Siblings() {
    document = std::make_unique<XmlDocument>("<a n='root'><" + kLong + " n='1'/>" +
                                             Repeated("<b/>", 1000) + "<" + kLong + " n='2'/></a>");
    EXPECT_TRUE(document->Find("a"));
  }

  IXMLInput& reader() const { return document->reader(); }

  std::unique_ptr<XmlDocument> document;
};

struct AtFirstSibling : Siblings {
  AtFirstSibling() { EXPECT_TRUE(document->Find(kLong)); }
};

// `move` leads from the element where `n` is `from` to the one where it is `to`, or throws and
// stays.
template <typename Start, typename Move>
void FailToMove(const char* from, const char* to, const Move& move) {
  const auto check = [&](Start& start, Outcome outcome) {
    EXPECT_EQ(outcome.threw, outcome.failed());
    EXPECT_EQ(outcome.result, !outcome.threw);
    if (outcome.threw) {
      EXPECT_EQ(start.document->Attribute("n"), from);
      EXPECT_TRUE(move(start.reader()));
    }
    EXPECT_EQ(start.document->Attribute("n"), to);
  };
  const auto work = [&](Start& start) { return move(start.reader()); };
  EXPECT_GT(FailEachAllocation<Start>(work, check), 0);
}

TEST(XmlAllocationTest, MovesThrowAndStay) {
  FailToMove<Siblings>("root", "1", [](auto& reader) { return reader.FindElement(kLongName); });
  FailToMove<AtFirstSibling>("1", "2", [](auto& reader) { return reader.NextElement(kLongName); });
  FailToMove<AtFirstSibling>("1", "root",
                             [](auto& reader) { return reader.LeaveElement(kLongName); });
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_FAILS_ALLOCATIONS
