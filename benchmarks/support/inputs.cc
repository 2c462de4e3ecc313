// SPDX-License-Identifier: MIT
#include "benchmarks/support/inputs.h"

#include <array>
#include <cstdint>
#include <random>
#include <string_view>

namespace stowra_bench {
namespace {

using namespace std::string_view_literals;

constexpr std::array kLatinWords = {"chair"sv,  "table"sv, "window"sv,    "oak"sv,  "garden"sv,
                                    "modern"sv, "brick"sv, "staircase"sv, "lamp"sv, "roof"sv};
constexpr std::array kForeignWords = {"Türblatt"sv, "éclairage"sv, "καρέκλα"sv, "τραπέζι"sv,
                                      "окно"sv,     "лестница"sv,  "कुर्सी"sv,    "खिड़की"sv,
                                      "椅子"sv,     "木製の机"sv,  "🪑"sv,    "🏠🌳"sv};

// Uses no standard distribution. Only the standard engines give the same numbers everywhere.
class Source {
 public:
  std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(engine_() % limit); }

  bool OneIn(std::uint32_t count) { return Below(count) == 0; }

  template <typename Words>
  std::string_view Word(const Words& words) {
    return words[Below(static_cast<std::uint32_t>(words.size()))];
  }

  // A text of `digits` hexadecimal digits.
  std::string Hex(int digits) {
    std::string text;
    for (int i = 0; i < digits; ++i) text += "0123456789abcdef"[Below(16)];
    return text;
  }

  std::string Uuid() {
    std::string text = Hex(8);
    for (const int digits : {4, 4, 4, 12}) text += '-' + Hex(digits);
    return text;
  }

 private:
  std::mt19937 engine_{20090817};
};

// Words in several scripts, some of them after an entity.
std::string MixedWords(Source& source, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += ' ';
    if (source.OneIn(8)) text += source.OneIn(2) ? "&amp; " : "&#8220;";
    text += source.OneIn(3) ? source.Word(kForeignWords) : source.Word(kLatinWords);
  }
  return text;
}

void AppendFeedHead(int entries, std::string& feed) {
  const std::string count = std::to_string(entries);
  feed +=
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<feed xmlns=\"http://www.w3.org/2005/Atom\"\n"
      "      xmlns:openSearch=\"http://a9.com/-/spec/opensearchrss/1.0/\"\n"
      "      xmlns:media=\"http://search.yahoo.com/mrss/\"\n"
      "      xmlns:s=\"http://schemas.stowra.example/stowra/2008\">\n"
      "  <id>http://models.stowra.example/feed</id>\n"
      "  <title>chairs filetype:qmf is:downloadable</title>\n"
      "  <link rel=\"self\" type=\"application/atom+xml\" "
      "href=\"http://models.stowra.example/feed?q=chairs&amp;page=2\"/>\n"
      "  <link rel=\"next\" type=\"application/atom+xml\" "
      "href=\"http://models.stowra.example/feed?q=chairs&amp;page=3\"/>\n"
      "  <link rel=\"previous\" type=\"application/atom+xml\" "
      "href=\"http://models.stowra.example/feed?q=chairs&amp;page=1\"/>\n"
      "  <link rel=\"alternate\" type=\"text/html\" "
      "href=\"http://models.stowra.example/search?q=chairs\"/>\n";
  feed += "  <openSearch:totalResults>" + count + "</openSearch:totalResults>\n";
  feed += "  <openSearch:startIndex>1</openSearch:startIndex>\n";
  feed += "  <openSearch:itemsPerPage>" + count + "</openSearch:itemsPerPage>\n";
}

void AppendRendition(const std::string& id, std::string_view kind, std::string_view type,
                     std::string& feed) {
  feed +=
      "      <media:content url=\"http://models.stowra.example/download?mid=" + id + "&amp;rtyp=";
  feed += kind;
  feed += "&amp;fn=model\" type=\"";
  feed += type;
  feed += "\" fileSize=\"184320\" medium=\"document\"/>\n";
}

void AppendMedia(const std::string& id, std::string& feed) {
  constexpr std::string_view kQmf = "application/vnd.brevix.qmf";
  feed += "    <media:group>\n";
  for (const char* kind : {"st", "lt"}) {
    feed += "      <media:thumbnail url=\"http://models.stowra.example/download?mid=" + id +
            "&amp;rtyp=" + kind + "&amp;ctyp=other\" width=\"128\" height=\"128\"/>\n";
  }
  AppendRendition(id, "zip", "application/zip", feed);
  AppendRendition(id, "k2", "application/vnd.pellamy.kmz", feed);
  for (const char* kind : {"s5", "s6", "s7", "s8"}) AppendRendition(id, kind, kQmf, feed);
  feed += "    </media:group>\n";
}

void AppendLinks(const std::string& id, const std::string& author, std::string& feed) {
  feed +=
      "    <link rel=\"alternate\" type=\"text/html\" "
      "href=\"http://models.stowra.example/details?mid=" +
      id + "&amp;ct=feed\"/>\n";
  feed +=
      "    <link rel=\"http://schemas.stowra.example/stowra/2008#user.query\" "
      "type=\"application/atom+xml\" href=\"http://models.stowra.example/feed?uq=" +
      author + "&amp;scoring=m\"/>\n";
  feed +=
      "    <link rel=\"self\" type=\"application/atom+xml\" "
      "href=\"http://models.stowra.example/feed/entry?mid=" +
      id + "\"/>\n";
}

void AppendEntry(Source& source, std::string& feed) {
  const std::string id = source.Hex(32);
  const std::string author = source.Hex(20);
  const bool is_collection = source.OneIn(5);
  feed += "  <entry>\n    <id>http://models.stowra.example/details?mid=" + id + "</id>\n";
  feed += "    <updated>2026-03-14T09:26:53Z</updated>\n";
  feed +=
      "    <category scheme=\"http://schemas.stowra.example/stowra/2008#kind\" "
      "term=\"http://schemas.stowra.example/stowra/2008";
  feed += is_collection ? "#collection\"/>\n" : "#model\"/>\n";
  feed += "    <title type=\"text\">" + MixedWords(source, 4) + "</title>\n";
  feed += "    <summary type=\"text\">" + MixedWords(source, 30) + "</summary>\n";
  AppendLinks(id, author, feed);
  if (is_collection) {
    feed +=
        "    <content type=\"application/atom+xml\" "
        "src=\"http://models.stowra.example/feed?cid=" +
        id + "\"/>\n";
  }
  feed += "    <author>\n      <name>" + MixedWords(source, 2) + "</name>\n";
  feed += "      <uri>http://models.stowra.example/profile?uq=" + author +
          "&amp;scoring=m</uri>\n    </author>\n";
  feed += source.OneIn(2) ? "    <s:dynamicComponent>true</s:dynamicComponent>\n"
                          : "    <s:dynamicComponent>false</s:dynamicComponent>\n";
  AppendMedia(id, feed);
  feed += "  </entry>\n";
}

// Appends words up to `size` bytes and fills the rest with spaces.
template <typename NextWord>
std::string MakeText(std::size_t size, const NextWord& next_word) {
  std::string text;
  text.reserve(size);
  for (;;) {
    const std::string_view word = next_word();
    if (text.size() + word.size() + 1 > size) break;
    text += word;
    text += ' ';
  }
  text.resize(size, ' ');
  return text;
}

}  // namespace

std::string MakeUpdateResponse() {
  Source source;
  std::string text =
      "{\"update\": {\"current_version\": \"26.1.189\", \"expire_version\": \"24.0.1\"}, "
      "\"message\": {\"id\": 4711, \"max_shows\": 3, \"width\": 480, \"height\": 360, "
      "\"title\": \"Bonjour \\u2014 καλημέρα\", "
      "\"url\": \"http://updates.stowra.example/message/4711\"}, \"datafiles\": [";
  for (int i = 0; i < 12; ++i) {
    if (i > 0) text += ", ";
    text += "{\"version\": " + std::to_string(100 + i);
    text += ", \"filename\": \"materials_" + source.Hex(8) + ".zip\"";
    text += ", \"url\": \"http://updates.stowra.example/data/" + source.Hex(32) + ".zip\"}";
  }
  return text + "]}";
}

std::string MakeExtensionStatus(int count) {
  Source source;
  std::string text = "{\"extensions\": [";
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += ",\n";
    const std::string id = source.Uuid();
    text += "{\"id\": \"" + id + "\", \"version_uuid\": \"" + source.Uuid();
    text += "\", \"version\": \"" + std::to_string(1 + source.Below(9)) + '.';
    text += std::to_string(source.Below(100)) + "\", \"file_url\": ";
    text += "\"http://extensions.stowra.example/download/" + id + "/package.zip?token=";
    text += source.Hex(24) + "\", \"update\": ";
    text += source.OneIn(4) ? "true" : "false";
    text += ", \"remote_kill\": ";
    text += source.OneIn(50) ? "true" : "false";
    text += ", \"enabled\": ";
    text += source.OneIn(5) ? "0}" : "1}";
  }
  return text + "]}";
}

std::string MakeFeed(int entries) {
  Source source;
  std::string feed;
  AppendFeedHead(entries, feed);
  for (int i = 0; i < entries; ++i) AppendEntry(source, feed);
  return feed + "</feed>\n";
}

std::string MakeFeedOfLinks(int count) {
  Source source;
  const std::string id = source.Hex(32);
  std::string feed;
  AppendFeedHead(1, feed);
  feed += "  <entry>\n    <id>http://models.stowra.example/details?mid=" + id + "</id>\n";
  feed +=
      "    <category term=\"http://schemas.stowra.example/stowra/2008#model\"/>\n"
      "    <title>chair</title>\n";
  for (int i = 0; i < count; ++i) {
    feed +=
        "    <link rel=\"related\" type=\"text/html\" "
        "href=\"http://models.stowra.example/details?mid=" +
        source.Hex(32) + "\"/>\n";
  }
  feed += "    <author><name>A</name><uri>http://models.stowra.example/a</uri></author>\n";
  AppendMedia(id, feed);
  return feed + "  </entry>\n</feed>\n";
}

std::string MakeFlatObject(int count) {
  Source source;
  std::string text = "{";
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += ", ";
    text += "\"member_" + source.Hex(12) + "\": ";
    text += '"' + source.Hex(40) + '"';
  }
  return text + "}";
}

std::string MakeAsciiText(std::size_t size) {
  Source source;
  return MakeText(size, [&] { return source.Word(kLatinWords); });
}

std::string MakeMixedText(std::size_t size) {
  Source source;
  return MakeText(size, [&] {
    return source.OneIn(2) ? source.Word(kForeignWords) : source.Word(kLatinWords);
  });
}

std::string MakeBytes(std::size_t size) {
  std::string bytes(size, '\0');
  std::mt19937_64 engine(20090817);
  for (char& byte : bytes) byte = static_cast<char>(engine() >> 56);
  return bytes;
}

}  // namespace stowra_bench
