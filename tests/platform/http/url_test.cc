// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/url.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/corpora.h"
#include "tests/support/text.h"

namespace stowra_test {
namespace {

using ovrant::internet::URL;
using ovrant::utils::ovrant_ustring;

// The value of `key`, if there is such a parameter.
std::optional<ovrant_ustring> ValueOf(const ovrant_ustring& url, const ovrant_ustring& key) {
  ovrant_ustring value("unchanged");
  URL parsed(url);
  if (parsed.getValueForExtraInfoKey(key, value)) return value;
  EXPECT_EQ(value, "unchanged");
  return std::nullopt;
}

TEST(UrlTest, GivesTheValueOfAParameter) {
  // The value is null if there is no such parameter.
  const struct {
    const char* url;
    const char* key;
    const char* value;
  } kCases[] = {
      {"https://models.example/get?id=12&rtyp=s8&x=y", "id", "12"},
      {"https://models.example/get?id=12&rtyp=s8&x=y", "rtyp", "s8"},
      {"https://models.example/get?id=12&rtyp=s8&x=y", "x", "y"},
      {"https://models.example/get?id=12", "rtyp", nullptr},
      {"https://models.example/get", "rtyp", nullptr},
      {"https://models.example/get?", "rtyp", nullptr},
      {"", "rtyp", nullptr},
      {"http://h/?rtypx=1&xrtyp=2&RTYP=3&rty=4", "rtyp", nullptr},
      {"http://h/?a=1&a=2", "a", "1"},
      {"http://h/?a&a=2", "a", ""},
      // The query is between the first question mark and the fragment.
      {"http://h/a=0?a=1#a=2", "a", "1"},
      {"http://h/?b=1#?a=2", "a", nullptr},
      {"http://h/#?a=2", "a", nullptr},
      {"http://h/?a=1?b=2", "a", "1?b=2"},
      {"http://h/&a=1", "a", nullptr},
      // The first equals sign ends the name.
      {"http://h/?a=&b=1", "a", ""},
      {"http://h/?b=1&a", "a", ""},
      {"http://h/?a=", "a", ""},
      {"http://h/?a=b=c", "a", "b=c"},
      {"http://h/?a==", "a", "="},
      // An empty name needs an equals sign.
      {"http://h/?=b", "", "b"},
      {"http://h/?", "", nullptr},
      {"http://h/?&&a=1&", "", nullptr},
      {"http://h/?&&a=1&", "a", "1"},
      // Values are decoded.
      {"http://h/?a=1%202%2B3%26%3d%2523", "a", "1 2+3&=%23"},
      {"http://h/?a=x+y++z", "a", "x y  z"},
      {"http://h/?a=%C3%A9%e2%82%ac%F0%9F%98%80", "a", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"http://h/?a=\xC3\xA9%C3%A9", "a", "\xC3\xA9\xC3\xA9"},
      {"http://h/?a=%", "a", "%"},
      {"http://h/?a=%4", "a", "%4"},
      {"http://h/?a=%4&b=1", "a", "%4"},
      {"http://h/?a=%4g%g4%%41%", "a", "%4g%g4%A%"},
      {"http://h/?a=100%+x", "a", "100% x"},
      {"http://h/?a=%FFx%E2%82", "a", "\xEF\xBF\xBDx\xEF\xBF\xBD"},
      // Names are not.
      {"http://h/?%61=1", "a", nullptr},
      {"http://h/?%61=1", "%61", "1"},
      {"http://h/?a+b=1", "a b", nullptr},
      {"http://h/?\xC3\xA9=1", "\xC3\xA9", "1"},
      // The rest need not be a URL.
      {"?a=1", "a", "1"},
      {"no url at all ?a=1", "a", "1"},
  };
  for (const auto& [url, key, value] : kCases) {
    const auto expected = value == nullptr ? std::nullopt : std::optional(Text(value));
    EXPECT_EQ(ValueOf(url, key), expected) << key << " of " << url;
  }
}

TEST(UrlTest, DecodesEveryByteInEitherCase) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    const ovrant_ustring expected = Text(std::string(1, static_cast<char>(byte)));
    for (const char* format : {"?a=%%%02x", "?a=%%%02X"}) {
      char url[8];
      std::snprintf(url, sizeof(url), format, byte);
      EXPECT_EQ(ValueOf(url, "a"), expected) << url;
    }
  }
}

TEST(UrlTest, AcceptsNulsAndLoneSurrogates) {
  EXPECT_EQ(ValueOf("http://h/?a=%00b", "a"), ovrant_ustring("\0b", 2));
  EXPECT_EQ(ValueOf(TextOf(u"\xD800?a=\xDC00"), "a"), ovrant_ustring("\xEF\xBF\xBD"));
  EXPECT_EQ(ValueOf(ovrant_ustring("h\0?a=\0", 6), "a"), ovrant_ustring("\0", 1));
}

TEST(UrlTest, MayBeAskedAgain) {
  URL url("http://h/?a=1&b=2");
  ovrant_ustring value;
  EXPECT_TRUE(url.getValueForExtraInfoKey("b", value));
  EXPECT_TRUE(url.getValueForExtraInfoKey("a", value));
  EXPECT_FALSE(url.getValueForExtraInfoKey("c", value));
  EXPECT_EQ(value, "1");
}

// A second implementation of the rules. It keeps every parameter.
using Parameters = std::vector<std::pair<std::string, std::string>>;

std::string DecodeAgain(const std::string& raw) {
  const auto is_digit = [](char byte) {
    return std::isxdigit(static_cast<unsigned char>(byte)) != 0;
  };
  std::string bytes;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] == '%' && i + 2 < raw.size() && is_digit(raw[i + 1]) && is_digit(raw[i + 2])) {
      bytes += static_cast<char>(std::stoi(raw.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      bytes += raw[i] == '+' ? ' ' : raw[i];
    }
  }
  return bytes;
}

Parameters ParametersOf(const std::string& url) {
  const std::string whole = url.substr(0, url.find('#'));
  const std::size_t mark = whole.find('?');
  std::istringstream query(mark == std::string::npos ? "" : whole.substr(mark + 1));
  Parameters parameters;
  for (std::string item; std::getline(query, item, '&');) {
    const std::size_t equals = std::min(item.find('='), item.size());
    const std::string value = equals < item.size() ? item.substr(equals + 1) : "";
    if (!item.empty()) parameters.emplace_back(item.substr(0, equals), DecodeAgain(value));
  }
  return parameters;
}

// Asks for every parameter and for some that do not exist. Returns how many it found.
std::size_t CheckUrl(const std::string& url) {
  std::map<std::string, std::string> first;
  for (const auto& [name, value] : ParametersOf(url)) first.emplace(name, value);
  for (const auto& [name, value] : first) {
    EXPECT_EQ(ValueOf(Text(url), Text(name)), Text(value)) << "parameter " << name << " of " << url;
  }
  for (const std::string& name : {std::string(), std::string("rtyp"), std::string("?"), url}) {
    if (first.count(name) > 0) continue;
    EXPECT_EQ(ValueOf(Text(url), Text(name)), std::nullopt)
        << "parameter " << name << " of " << url;
  }
  return first.size();
}

nlohmann::json ReadJson(const std::filesystem::path& file) {
  return nlohmann::json::parse(ReadFile(file));
}

TEST(UrlCorpusTest, FollowsTheRulesForEveryText) {
  SKIP_WITHOUT_CORPUS(folder, "url-whatwg");
  // How many texts a file holds, and the least number of parameters in them.
  const struct {
    const char* file;
    const char* before;
    int texts;
    std::size_t parameters;
  } kFiles[] = {
      {"urltestdata.json", "", 891, 31},
      {"urlencoded-parser-data.json", "http://h/?", 35, 36},
      {"toascii.json", "http://h/?x=", 87, 87},
      {"percent-encoding.json", "http://h/?x=", 7, 7},
  };
  for (const auto& [file, before, texts, parameters] : kFiles) {
    int count = 0;
    std::size_t found = 0;
    for (const nlohmann::json& test : ReadJson(folder / file)) {
      if (!test.is_object()) continue;  // a comment
      ++count;
      found += CheckUrl(before + test.at("input").get<std::string>());
    }
    EXPECT_EQ(count, texts) << file;
    EXPECT_GE(found, parameters) << file;
  }
}

TEST(UrlCorpusTest, FollowsTheRulesForEveryPartOfAUrl) {
  SKIP_WITHOUT_CORPUS(folder, "url-whatwg");
  int texts = 0;
  const nlohmann::json setters = ReadJson(folder / "setters_tests.json");
  for (const auto& [attribute, tests] : setters.items()) {
    if (attribute == "comment") continue;
    for (const nlohmann::json& test : tests) {
      CheckUrl(test.at("href").get<std::string>());
      CheckUrl("http://h/?" + test.at("new_value").get<std::string>());
      ++texts;
    }
  }
  EXPECT_GT(texts, 200);
}

// The standard decodes names too, so only a first name that needs no decoding is compared.
TEST(UrlCorpusTest, DecodesValuesAsTheStandardDoes) {
  SKIP_WITHOUT_CORPUS(folder, "url-whatwg");
  int compared = 0;
  for (const nlohmann::json& test : ReadJson(folder / "urlencoded-parser-data.json")) {
    const auto input = test.at("input").get<std::string>();
    const auto output = test.at("output").get<Parameters>();
    if (output.empty() || input.rfind(output[0].first + "=", 0) != 0) continue;
    const auto found = ValueOf(("http://h/?" + input).c_str(), output[0].first.c_str());
    ASSERT_TRUE(found) << input;
    EXPECT_EQ(found->utf8(), output[0].second) << input;
    ++compared;
  }
  EXPECT_GT(compared, 10);
}

}  // namespace
}  // namespace stowra_test
