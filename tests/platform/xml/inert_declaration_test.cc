// SPDX-License-Identifier: MIT
// A document type declaration opens and fetches nothing.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "common_stowraapi/platform/internet_data.h"
#include "tests/platform/xml/document.h"
#include "tests/platform/xml/open_watch.h"
#include "tests/support/raw_server.h"
#include "tests/support/temporary_folder.h"

namespace stowra_test {
namespace {

// Documents that refer to a resource, and the text of `a` in those that open.
struct Reference {
  std::string bytes;
  std::optional<std::string> text;
};

std::vector<Reference> ReferencesTo(const std::string& resource) {
  const std::string system = "SYSTEM \"" + resource + "\"";
  const std::string entity = "<!ENTITY e " + system + ">";
  const std::string parameter = "<!ENTITY % p " + system + "> %p;";
  return {
      {"<!DOCTYPE a " + system + "><a>x</a>", "x"},
      {"<!DOCTYPE a PUBLIC 'public' \"" + resource + "\"><a>x</a>", "x"},
      {"<?xml version='1.0' standalone='no'?><!DOCTYPE a " + system + " []><a>x</a>", "x"},
      {"<?xml version='1.0' standalone='yes'?><!DOCTYPE a " + system + " []><a>x</a>", "x"},
      {"<!DOCTYPE a [<!NOTATION n " + system + ">]><a>x</a>", "x"},
      {"<!DOCTYPE a " + system + "><a>x&e;y</a>", std::nullopt},
      {"<!DOCTYPE a " + system + "><a n='&e;'>x</a>", std::nullopt},
      {"<!DOCTYPE a " + system + " [%p;]><a>x</a>", std::nullopt},
      {"<!DOCTYPE a [" + entity + "]><a>x&e;y</a>", std::nullopt},
      {"<!DOCTYPE a [" + parameter + "]><a>x</a>", std::nullopt},
      {"<!DOCTYPE a " + system + " [" + parameter + entity + "]><a>x</a>", std::nullopt},
      {"<?xml-stylesheet href=\"" + resource + "\"?><a>x</a>", "x"},
      {"<a xmlns:i='http://www.w3.org/2001/XInclude'>x<i:include href=\"" + resource + "\"/>y</a>",
       "xy"},
      {"<a xmlns:s='http://www.w3.org/2001/XMLSchema-instance' s:noNamespaceSchemaLocation=\"" +
           resource + "\">x</a>",
       "x"},
  };
}

void ExpectInert(const std::string& resource) {
  for (const auto& [bytes, text] : ReferencesTo(resource)) {
    if (text) {
      EXPECT_EQ(RootText(bytes), text) << bytes;
    } else {
      EXPECT_FALSE(Opens(bytes)) << bytes;
    }
  }
}

#if defined(STOWRA_WATCHES_OPENED_FILES)

TEST(XmlOpenWatchTest, NoFileIsOpened) {
  const TemporaryFolder folder;
  const std::filesystem::path inner = folder.path() / "inner";
  const std::string file = (inner / "file").string();
  std::filesystem::create_directory(inner);
  std::ofstream(file) << "<!ENTITY e 'secret'>";
  OpenWatch watch(folder.path());
  const WorkingFolder working(inner);
  for (const std::string& name :
       {file, "file://" + file, "file://localhost" + file, std::string("file"),
        std::string("./file"), std::string("../inner/file"), "jar:file://" + file + "!/x"}) {
    ExpectInert(name);
    EXPECT_EQ(watch.TakeCount(), 0) << name;
  }
  // The watch notices what is opened.
  for (const std::string& name : {file, std::string("file")}) {
    EXPECT_TRUE(std::ifstream(name));
    EXPECT_GT(watch.TakeCount(), 0) << name;
    EXPECT_EQ(watch.TakeCount(), 0) << name;
  }
}

#endif

TEST(XmlInertDeclarationTest, SystemFilesAreNotRead) {
  for (const char* const name :
       {"file:///etc/passwd", "/etc/passwd", "../../../../../../../../etc/passwd", "/dev/stdin"}) {
    ExpectInert(name);
  }
}

TEST(XmlInertDeclarationTest, NoServerIsCalled) {
  const RawServer server(Always(Response(200, "")));
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  for (const char* const scheme : {"http://", "https://", "ftp://", "//"}) {
    ExpectInert(scheme + host + "/x.dtd");
  }
  // The test's own call is the first, and the server notices it.
  EXPECT_TRUE(ovrant::internet::InternetData(Text(server.Url())).Download());
  EXPECT_EQ(server.connections(), 1);
}

}  // namespace
}  // namespace stowra_test
