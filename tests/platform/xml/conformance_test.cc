// A public conformance suite for XML readers.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/open_watch.h"
#include "tests/support/corpora.h"
#include "tests/support/small_stack.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

struct Case {
  std::string id;
  std::filesystem::path file;
  std::string bytes;
};

// The cases with that expectation, read before anything watches.
std::vector<Case> CasesOf(const std::filesystem::path& folder, const std::string& expectation) {
  std::vector<Case> cases;
  for (const auto& entry : nlohmann::json::parse(ReadFile(folder / "cases.json"))) {
    if (entry.at("expect") != expectation) continue;
    const std::filesystem::path file = entry.at("file").get<std::string>();
    cases.push_back({entry.at("id"), file, ReadFile(folder / file)});
  }
  return cases;
}

// How many of the cases open.
int CountOpened(const std::vector<Case>& cases, bool expected) {
  int opened = 0;
  RunOnSmallStack([&] {
    for (const Case& one : cases) {
      const bool opens = Opens(one.bytes);
      EXPECT_EQ(opens, expected) << one.id << " " << one.file;
      opened += opens ? 1 : 0;
    }
  });
  return opened;
}

TEST(XmlConformanceTest, WellFormedDocumentsOpen) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const std::vector<Case> cases = CasesOf(folder, "accept");
  EXPECT_EQ(cases.size(), 313U);
  EXPECT_EQ(CountOpened(cases, true), 313);
}

TEST(XmlConformanceTest, IllFormedDocumentsDoNotOpen) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const std::vector<Case> cases = CasesOf(folder, "reject");
  EXPECT_EQ(cases.size(), 499U);
  EXPECT_EQ(CountOpened(cases, false), 0);
}

TEST(XmlConformanceTest, DoubtfulDocumentsDoNoHarm) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const std::vector<Case> cases = CasesOf(folder, "either");
  EXPECT_EQ(cases.size(), 637U);
  int opened = 0;
  RunOnSmallStack([&] {
    for (const Case& one : cases) {
      XmlDocument document(one.bytes);
      if (!document.is_open()) continue;
      ++opened;
      for (const char* const name : {"doc", "root", "foo", "a"}) {
        document.Text(name);
        document.Find(name);
      }
    }
  });
  // Some need what a reader of the document alone can do.
  EXPECT_GT(opened, 100);
  EXPECT_LT(opened, 637);
}

#if defined(STOWRA_WATCHES_OPENED_FILES)

// The suite with all its entities lies where names in the documents would lead.
TEST(XmlConformanceTest, NoDocumentOpensAnotherFile) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const TemporaryFolder temporary;
  const std::filesystem::path copy = temporary.path() / "xmlconf";
  std::filesystem::copy(folder, copy, std::filesystem::copy_options::recursive);
  std::map<std::string, std::vector<Case>> all;
  for (const char* const expectation : {"accept", "reject", "either"}) {
    all[expectation] = CasesOf(folder, expectation);
  }
  OpenWatch watch(copy);
  int tried = 0;
  for (const auto& [expectation, cases] : all) {
    for (const Case& one : cases) {
      const WorkingFolder working((copy / one.file).parent_path());
      Opens(one.bytes);
      ++tried;
      EXPECT_EQ(watch.TakeCount(), 0) << one.id;
    }
  }
  EXPECT_EQ(tried, 313 + 499 + 637);
  EXPECT_FALSE(ReadFile(copy / all["accept"][0].file).empty());
  EXPECT_GT(watch.TakeCount(), 0) << "the watch sees nothing";
}

#endif

}  // namespace
}  // namespace stowra_test
