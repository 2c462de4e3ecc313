// SPDX-License-Identifier: MIT
// A document type declaration opens and fetches nothing.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/xml/document.h"
#include "tests/platform/xml/open_watch.h"
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
  const SilentPort port;
  const std::string host = "127.0.0.1:" + std::to_string(port.number());
  for (const char* const scheme : {"http://", "https://", "ftp://", "//"}) {
    ExpectInert(scheme + host + "/x.dtd");
  }
  EXPECT_FALSE(port.WasCalled());
  // The port notices a call.
  const int caller = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port.number()));
  EXPECT_EQ(connect(caller, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
  EXPECT_TRUE(port.WasCalled());
  close(caller);
}

}  // namespace
}  // namespace stowra_test
