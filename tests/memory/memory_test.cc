// SPDX-License-Identifier: MIT
// Limits the memory of each parser to a multiple of its input, and prints the multiples.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/support/inputs.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/multipart_upload.h"
#include "common_stowraapi/content/upload_config.h"
#include "common_stowraapi/json/document.h"
#include "common_stowraapi/platform/internet_data.h"
#include "common_stowraapi/platform/ustring.h"
#include "common_stowraapi/platform/xml_input.h"
#include "common_stowraapi/services/item_map.h"
#include "common_stowraapi/services/update_query.h"
#include "common_stowraapi/services/user_info_query.h"
#include "tests/support/failing_malloc.h"
#include "tests/support/raw_server.h"
#include "tests/support/text.h"

#ifdef STOWRA_COUNTS_MEMORY

namespace stowra_test {
namespace {

using namespace stowra_bench;  // NOLINT(google-build-using-namespace)
using ovrant::IXMLInput;
using ovrant::internet::InternetData;
using ovrant::json::Document;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::ovrant_ustring;
using ovrant::webservices::UpdateQuery;
using ovrant::webservices::UserInfoQuery;

// Parses an input and returns an object that owns the results, or null on failure.
using Parse = std::function<std::shared_ptr<void>(const std::string& input)>;

struct MeasuredInput {
  std::string name;   // letters and digits
  std::string input;  // some hundred KB, so that fixed costs do not matter
  Parse parse;
  bool is_taken;      // whether the parser accepts the input
  double most_peak;   // heap bytes during parsing, as a multiple of the input's size
  double most_final;  // the same for those that the results hold
};

void PrintTo(const MeasuredInput& measured, std::ostream* out) { *out << measured.name; }

constexpr std::size_t kSize = 400'000;

// RapidJSON packs a value into 16 bytes on x86-64. Elsewhere it has 24.
#if defined(__x86_64__)
constexpr double kJson = 1;
#else
constexpr double kJson = 1.5;
#endif

// As often as gives at least kSize.
std::string Filled(const std::string& text) {
  std::string result;
  while (result.size() < kSize) result += text;
  return result;
}

// `before`, then `text` that often with commas between, then `after`.
std::string List(const std::string& before, const std::string& text, const std::string& after) {
  return before + Filled(text + ",") + text + after;
}

// The XML parsers take a pointer to non-const bytes but do not change them.
unsigned char* DataOf(const std::string& text) {
  return reinterpret_cast<unsigned char*>(const_cast<char*>(text.data()));
}

std::shared_ptr<void> ReadText(const std::string& input) {
  return std::make_shared<ovrant_ustring>(Text(input));
}

std::shared_ptr<void> ReadDocument(const std::string& input) {
  auto document = std::make_shared<Document>();
  return document->Load(Text(input)) ? document : nullptr;
}

template <typename Query>
std::shared_ptr<void> ReadWith(const std::string& input) {
  auto query = std::make_shared<Query>();
  return query->ParseResponse(Text(input)) ? query : nullptr;
}

std::shared_ptr<void> ReadItemMap(const std::string& input) {
  auto map = ovrant::extensionstoreapi::ReadItemMap(Text(input));
  return map.empty() ? nullptr : std::make_shared<decltype(map)>(std::move(map));
}

std::shared_ptr<void> ReadXml(const std::string& input) {
  return {ovrant::Get_IXMLInput(DataOf(input), static_cast<int>(input.size())),
          [](IXMLInput* reader) { ovrant::End_IXMLInput(&reader); }};
}

std::shared_ptr<void> ReadFeed(const std::string& input) {
  auto query = std::make_shared<ContentQuery>();
  return query->Load(DataOf(input), static_cast<int>(input.size())) ? query : nullptr;
}

std::shared_ptr<void> ReadConfig(const std::string& input) {
  auto config = std::make_shared<UploadConfig>();
  return config->ParseResponse(DataOf(input), input.size()) ? config : nullptr;
}

// Downloads the input from a server that adds `header` and then closes the connection. The first
// download starts the server. After that its memory belongs to other threads and is not counted.
Parse DownloadWith(const std::string& header) {
  auto server = std::make_shared<std::unique_ptr<RawServer>>();
  return [server, header](const std::string& input) -> std::shared_ptr<void> {
    if (!*server) {
      *server = std::make_unique<RawServer>(
          AlwaysThenClose("HTTP/1.1 200 OK\r\nConnection: close\r\n" + header + "\r\n" + input));
    }
    auto transport = std::make_shared<InternetData>(Text((*server)->Url()));
    return transport->Download() ? transport : nullptr;
  };
}

// Writes a body. The input is the file to send.
std::shared_ptr<void> WritePayload(const std::string& input) {
  UploadFile file;
  file.file_path_ = "stool.qmf";
  auto stream = std::make_shared<std::stringstream>();
  ovrant::stowraapiclient::multipartupload::SetupPayload("m42", &file, DataOf(input), input.size(),
                                                         "boundary", stream.get());
  return stream;
}

std::string UserInfo() {
  std::string members = MakeFlatObject(8000);
  return R"({"uid":"u","email":"e","vkr_id":"v",)" + members.substr(1);
}

std::string DataFiles(const std::string& file) {
  return R"({"update":{"current_version":"1","expire_version":"1"},"datafiles":)" +
         List("[", file, "]}");
}

constexpr char kDataFile[] = R"({"version":1,"filename":"materials.zip","url":"https://host/m"})";
constexpr char kLengthHeader[] = "Content-Length: 400000\r\n";

std::string EmptyFeedEntries() {
  return "<feed xmlns='http://www.w3.org/2005/Atom'>" + Filled("<entry/>") + "</feed>";
}

constexpr char kFile[] =
    "<file><type>model</type><uploadUrl>https://host/u?task=create&amp;title=Stool</uploadUrl>"
    "<zipped>false</zipped><format>k2</format></file>";

std::string Config(const std::string& file) {
  return "<upload><successUrl>https://host/s</successUrl><failureUrl>https://host/f</failureUrl>"
         "<files>" +
         Filled(file) + "</files></upload>";
}

std::vector<MeasuredInput> MeasuredInputs() {
  return {
      {"TextAscii", MakeAsciiText(kSize), ReadText, true, 2.5, 2.5},
      {"TextMixed", MakeMixedText(kSize), ReadText, true, 2.5, 2.5},
      {"TextOfNoUtf8", std::string(kSize, '\xff'), ReadText, true, 2.5, 2.5},
      {"JsonExtensions", MakeExtensionStatus(1300), ReadDocument, true, 5 * kJson, 2 * kJson},
      {"JsonEmptyArrays", List("[", "[]", "]"), ReadDocument, true, 15.5 * kJson, 6 * kJson},
      {"JsonZeros", List("[", "0", "]"), ReadDocument, true, 21.5 * kJson, 9 * kJson},
      {"JsonEmptyNames", List("{", R"("":0)", "}"), ReadDocument, true, 20 * kJson, 7.5 * kJson},
      {"JsonOneText", "[\"" + std::string(kSize, 'x') + "\"]", ReadDocument, true, 5, 1.5},
      {"JsonCutOff", List("[", "0", ""), ReadDocument, false, 19 * kJson, 0.01},
      {"UserInfo", UserInfo(), ReadWith<UserInfoQuery>, true, 8, 4},
      {"UpdateDataFiles", DataFiles(kDataFile), ReadWith<UpdateQuery>, true, 7.5, 3},
      {"UpdateEmptyDataFiles", DataFiles("{}"), ReadWith<UpdateQuery>, true, 35, 26.5},
      {"Extensions", MakeExtensionStatus(1300), ReadItemMap, true, 6, 2.5},
      {"ExtensionsEmpty", R"({"extensions":)" + List("[", "{}", "]}"), ReadItemMap, true,
       16 * kJson, 0.01},
      {"XmlFeed", MakeFeed(150), ReadXml, true, 3, 1.7},
      {"XmlEmptyElements", "<a>" + Filled("<a/>") + "</a>", ReadXml, true, 9, 9},
      {"XmlAttributes", "<a>" + Filled("<a a=''/>") + "</a>", ReadXml, true, 5.6, 5.6},
      {"XmlText", "<a>" + Filled("text ") + "</a>", ReadXml, true, 2.6, 1.1},
      {"XmlCutOff", "<a>" + Filled("<a/>"), ReadXml, false, 7.2, 0.01},
      {"Feed", MakeFeed(150), ReadFeed, true, 3, 0.75},
      {"FeedOfLinks", MakeFeedOfLinks(5000), ReadFeed, true, 3.9, 0.01},
      {"FeedOfEmptyEntries", EmptyFeedEntries(), ReadFeed, false, 4.6, 0.01},
      {"Config", Config(kFile), ReadConfig, true, 6.7, 3.2},
      {"ConfigEmptyFiles", Config("<file/>"), ReadConfig, false, 66, 0.01},
      {"BodyOfKnownLength", MakeBytes(kSize), DownloadWith(kLengthHeader), true, 1.5, 1.5},
      {"BodyOfUnknownLength", MakeBytes(kSize), DownloadWith(""), true, 2.5, 1.5},
      {"Multipart", MakeBytes(kSize), WritePayload, true, 2, 1.5},
  };
}

class MemoryTest : public ::testing::TestWithParam<MeasuredInput> {};

// Measures the third parsing. Earlier ones may allocate memory that stays for all later ones.
TEST_P(MemoryTest, StaysWithinMultipleOfInputAndIsFreed) {
  const MeasuredInput& measured = GetParam();
  ASSERT_EQ(measured.parse(measured.input) != nullptr, measured.is_taken);
  measured.parse(measured.input);
  const MemoryWatch watch;
  std::shared_ptr<void> results = measured.parse(measured.input);
  const auto size = static_cast<double>(measured.input.size());
  const double peak = static_cast<double>(watch.peak()) / size;
  const double final = static_cast<double>(watch.live()) / size;
  results.reset();
  EXPECT_EQ(watch.live(), 0U);
  std::printf("%-22s %7zu bytes: peak %6.2f times, results %6.2f times\n", measured.name.c_str(),
              measured.input.size(), peak, final);
  EXPECT_LE(peak, measured.most_peak);
  EXPECT_LE(final, measured.most_final);
}

INSTANTIATE_TEST_SUITE_P(Of, MemoryTest, ::testing::ValuesIn(MeasuredInputs()), RowName());

}  // namespace
}  // namespace stowra_test

#endif  // STOWRA_COUNTS_MEMORY
