// SPDX-License-Identifier: MIT
// A public conformance suite for XML readers.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

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

// Whether the document declares an entity or an attribute list.
bool Declares(std::string bytes) {
  // This leaves ASCII of UTF-16.
  bytes.erase(std::remove(bytes.begin(), bytes.end(), '\0'), bytes.end());
  for (auto begin = bytes.find("<!--"); begin != std::string::npos; begin = bytes.find("<!--")) {
    const std::size_t end = bytes.find("-->", begin + 4);
    bytes.erase(begin, end == std::string::npos ? end : end + 3 - begin);
  }
  return bytes.find("<!ENTITY") != std::string::npos ||
         bytes.find("<!ATTLIST") != std::string::npos;
}

// This document declares &gt; alone, which the parser knows and passes over.
constexpr char kDeclaresKnownCharacter[] = "rmt-e2e-24";

TEST(XmlConformanceTest, WellFormedDocumentsOpenUnlessTheyDeclare) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const std::vector<Case> cases = CasesOf(folder, "accept");
  EXPECT_EQ(cases.size(), 313U);
  int opened = 0;
  RunOnSmallStack([&] {
    for (const Case& one : cases) {
      const bool opens = Opens(one.bytes);
      const bool expected = !Declares(one.bytes) || one.id == kDeclaresKnownCharacter;
      EXPECT_EQ(opens, expected) << one.id << " " << one.file;
      opened += opens ? 1 : 0;
    }
  });
  EXPECT_EQ(opened, 162);
}

TEST(XmlConformanceTest, IllFormedDocumentsDoNotOpen) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const std::vector<Case> cases = CasesOf(folder, "reject");
  EXPECT_EQ(cases.size(), 499U);
  RunOnSmallStack([&] {
    for (const Case& one : cases) EXPECT_FALSE(Opens(one.bytes)) << one.id << " " << one.file;
  });
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
      EXPECT_FALSE(Declares(one.bytes)) << one.id << " " << one.file;
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

// The corpora may be read-only. The copies of their folders are not.
void CopyFiles(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::filesystem::create_directory(to);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(from)) {
    const std::filesystem::path copy = to / entry.path().lexically_relative(from);
    if (entry.is_directory()) {
      std::filesystem::create_directory(copy);
    } else {
      std::filesystem::copy_file(entry.path(), copy);
    }
  }
}

// The suite with all its entities lies where names in the documents would lead.
TEST(XmlConformanceTest, NoDocumentOpensAnotherFile) {
  SKIP_WITHOUT_CORPUS(folder, "xmlconf");
  const TemporaryFolder temporary;
  const std::filesystem::path copy = temporary.path() / "xmlconf";
  CopyFiles(folder, copy);
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
