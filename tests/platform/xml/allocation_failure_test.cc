// Every operation with each of its allocations failing in turn.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>

#include "tests/platform/xml/counting_malloc.h"
#include "tests/platform/xml/xml_document.h"

#ifdef STOWRA_COUNTS_MEMORY

namespace stowra_test {
namespace {

using ovrant::Get_IXMLInput;
using ovrant::IXMLInput;
using ovrant::utils::ovrant_ustring;

TEST(XmlCountingMallocTest, CountsWhatIsAllocatedAndFreed) {
  const MemoryWatch watch;
  {
    const std::string text(100'000, 'x');
    EXPECT_GE(watch.live(), 100'000U);
    EXPECT_LT(watch.live(), 110'000U);
    // The C library's and another library's own allocations.
    char* const copy = strdup(text.c_str());
    EXPECT_GE(watch.live(), 200'000U);
    void* const grown = std::realloc(copy, 300'000);
    EXPECT_GE(watch.live(), 400'000U);
    EXPECT_LT(watch.live(), 420'000U);
    std::free(grown);
  }
  EXPECT_LT(watch.live(), 1'000U);
  EXPECT_GE(watch.peak(), 500'000U);
}

// A document whose parts need allocations of every kind.
std::string LargeDocument() {
  std::string bytes =
      "<!DOCTYPE a [<!ENTITY e 'entity'><!ENTITY f '&e;<i>&e;</i>'>"
      "<!ATTLIST a d CDATA 'default'>]><a xmlns:p='urn:p'>";
  for (int i = 0; i < 200; ++i) {
    const std::string number = std::to_string(i);
    bytes += "<p:element" + number + " attribute" + number + "='value " + number + "'>text " +
             number + "&f;<![CDATA[ and more ]]></p:element" + number + ">";
  }
  return bytes + "<text>" + std::string(50'000, 'x') + "</text></a>";
}

TEST(XmlAllocationFailureTest, OpeningGivesNullAndLeaksNothing) {
  const std::string bytes = LargeDocument();
  const auto* const data = reinterpret_cast<const unsigned char*>(bytes.data());
  const int length = static_cast<int>(bytes.size());
  int failures = 0;
  for (bool has_failed = true; has_failed; ++failures) {
    const MemoryWatch watch;
    IXMLInput* reader = nullptr;
    {
      const FailingMalloc failing(failures);
      reader = Get_IXMLInput(data, length);
      has_failed = failing.has_failed();
    }
    ASSERT_EQ(reader == nullptr, has_failed) << failures;
    delete reader;
    ASSERT_EQ(watch.live(), 0U) << failures;
  }
  EXPECT_GT(failures, 20);
}

// Calls `operation` with one allocation more each time until none fails. Each failure must be
// std::bad_alloc; `check` is run after it. Returns how often it failed.
int FailEachAllocation(const std::function<bool()>& operation, const std::function<void()>& check) {
  for (int failures = 0;; ++failures) {
    bool has_thrown = false;
    bool has_failed = false;
    {
      const FailingMalloc failing(failures);
      try {
        EXPECT_TRUE(operation());
      } catch (const std::bad_alloc&) {
        has_thrown = true;
      }
      has_failed = failing.has_failed();
    }
    EXPECT_EQ(has_thrown, has_failed) << failures;
    if (!has_failed || testing::Test::HasFailure()) return failures;
    check();
  }
}

// Names and values here are too long for any buffer inside a string.
const std::string kLong(300, 'n');

TEST(XmlAllocationFailureTest, GettersChangeNothing) {
  const std::string value(300, 'v');
  XmlDocument document("<" + kLong + " " + kLong + "='" + value + "'><b>" + value + "</b></" +
                       kLong + ">");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find(kLong));
  IXMLInput& reader = document.reader();
  ovrant_ustring text = "before";
  const auto check = [&] { EXPECT_EQ(text, "before"); };
  const ovrant_ustring name = UString(kLong);
  EXPECT_GT(FailEachAllocation([&] { return reader.GetAttribute(name, text); }, check), 0);
  EXPECT_EQ(text.utf8(), value);
  text = "before";
  const ovrant_ustring child = "b";
  EXPECT_GT(FailEachAllocation([&] { return reader.GetElementText(child, text); }, check), 0);
  EXPECT_EQ(text.utf8(), value);
}

TEST(XmlAllocationFailureTest, NumbersAndFlagsChangeNothing) {
  XmlDocument document("<a><" + kLong + ">" + std::string(300, '0') + "1</" + kLong + "><b>" +
                       std::string(300, ' ') + "true</b></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("a"));
  IXMLInput& reader = document.reader();
  int number = -77;
  const ovrant_ustring name = UString(kLong);
  FailEachAllocation([&] { return reader.GetElementInt(name, number); },
                     [&] { EXPECT_EQ(number, -77); });
  EXPECT_EQ(number, 1);
  bool flag = false;
  const ovrant_ustring child = "b";
  FailEachAllocation([&] { return reader.GetElementBool(child, flag); },
                     [&] { EXPECT_FALSE(flag); });
  EXPECT_TRUE(flag);
}

TEST(XmlAllocationFailureTest, MovesChangeNothing) {
  XmlDocument document("<a n='root'><" + kLong + " n='1'/><b n='b'/><" + kLong + " n='2'/></a>");
  ASSERT_TRUE(document.is_open());
  ASSERT_TRUE(document.Find("a"));
  IXMLInput& reader = document.reader();
  const ovrant_ustring name = UString(kLong);
  const auto stays_at = [&](const char* element) {
    return [&document, element] { EXPECT_EQ(document.Attribute("n"), element); };
  };
  FailEachAllocation([&] { return reader.FindElement(name); }, stays_at("root"));
  EXPECT_EQ(document.Attribute("n"), "1");
  FailEachAllocation([&] { return reader.NextElement(name); }, stays_at("1"));
  EXPECT_EQ(document.Attribute("n"), "2");
  FailEachAllocation([&] { return reader.LeaveElement(name); }, stays_at("2"));
  EXPECT_EQ(document.Attribute("n"), "root");
}

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_MEMORY
