// SPDX-License-Identifier: MIT
#include "common_stowraapi/platform/url.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
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

// `value` is null if there is no such parameter.
struct Row {
  const char* name;
  const char* url;
  const char* key;
  const char* value;
};

class UrlValueTest : public ::testing::TestWithParam<Row> {};

TEST_P(UrlValueTest, FollowsTheRules) {
  const auto& [name, url, key, value] = GetParam();
  EXPECT_EQ(ValueOf(url, key), value == nullptr ? std::nullopt : std::optional(Text(value))) << url;
}

INSTANTIATE_TEST_SUITE_P(
    Parameters, UrlValueTest,
    ::testing::Values(
        Row{"First", "https://models.example/get?id=12&rtyp=s8&x=y", "id", "12"},
        Row{"Second", "https://models.example/get?id=12&rtyp=s8&x=y", "rtyp", "s8"},
        Row{"Last", "https://models.example/get?id=12&rtyp=s8&x=y", "x", "y"},
        Row{"Missing", "https://models.example/get?id=12", "rtyp", nullptr},
        Row{"WithoutQuery", "https://models.example/get", "rtyp", nullptr},
        Row{"EmptyQuery", "https://models.example/get?", "rtyp", nullptr},
        Row{"EmptyUrl", "", "rtyp", nullptr},
        Row{"WholeNameAndItsCase", "http://h/?rtypx=1&xrtyp=2&RTYP=3&rty=4", "rtyp", nullptr},
        Row{"FirstOfTwo", "http://h/?a=1&a=2", "a", "1"},
        Row{"FirstOfTwoWithoutValue", "http://h/?a&a=2", "a", ""},
        Row{"NotInPathOrFragment", "http://h/a=0?a=1#a=2", "a", "1"},
        Row{"QueryInsideFragment", "http://h/?b=1#?a=2", "a", nullptr},
        Row{"QueryInsideFragmentAlone", "http://h/#?a=2", "a", nullptr},
        Row{"SecondQuestionMarkIsText", "http://h/?a=1?b=2", "a", "1?b=2"},
        Row{"WithoutQuestionMark", "http://h/&a=1", "a", nullptr},
        Row{"EmptyValue", "http://h/?a=&b=1", "a", ""},
        Row{"NameAlone", "http://h/?b=1&a", "a", ""},
        Row{"EmptyValueAtTheEnd", "http://h/?a=", "a", ""},
        Row{"FirstEqualsSignEndsTheName", "http://h/?a=b=c", "a", "b=c"},
        Row{"ValueIsAnEqualsSign", "http://h/?a==", "a", "="},
        Row{"EmptyName", "http://h/?=b", "", "b"},
        Row{"NoEmptyParameter", "http://h/?", "", nullptr},
        Row{"NoEmptyParametersBetween", "http://h/?&&a=1&", "", nullptr},
        Row{"BesideEmptyParameters", "http://h/?&&a=1&", "a", "1"},
        Row{"DecodesAscii", "http://h/?a=1%202%2B3%26%3d%2523", "a", "1 2+3&=%23"},
        Row{"DecodesPlusSigns", "http://h/?a=x+y++z", "a", "x y  z"},
        Row{"DecodesUtf8", "http://h/?a=%C3%A9%e2%82%ac%F0%9F%98%80", "a",
            "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
        Row{"DecodesBesidePlainText", "http://h/?a=\xC3\xA9%C3%A9", "a", "\xC3\xA9\xC3\xA9"},
        Row{"PercentSignAtTheEnd", "http://h/?a=%", "a", "%"},
        Row{"PercentSignAndOneDigit", "http://h/?a=%4", "a", "%4"},
        Row{"PercentSignAndOneDigitBeforeTheNext", "http://h/?a=%4&b=1", "a", "%4"},
        Row{"PercentSignsBeforeOtherText", "http://h/?a=%4g%g4%%41%", "a", "%4g%g4%A%"},
        Row{"PercentSignBeforeAPlusSign", "http://h/?a=100%+x", "a", "100% x"},
        Row{"NoUtf8BecomesReplacements", "http://h/?a=%FFx%E2%82", "a",
            "\xEF\xBF\xBDx\xEF\xBF\xBD"},
        Row{"NameIsNotDecoded", "http://h/?%61=1", "a", nullptr},
        Row{"NameAsWritten", "http://h/?%61=1", "%61", "1"},
        Row{"PlusSignInTheName", "http://h/?a+b=1", "a b", nullptr},
        Row{"NameInUtf8", "http://h/?\xC3\xA9=1", "\xC3\xA9", "1"},
        Row{"QueryAlone", "?a=1", "a", "1"}, Row{"NoUrl", "no url at all ?a=1", "a", "1"}),
    RowName());

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

// A second implementation of the rules. It reads the bytes once and keeps every parameter.
using Parameters = std::vector<std::pair<std::string, std::string>>;

std::string DecodeAgain(const std::string& raw) {
  const std::string digits = "0123456789abcdef0123456789ABCDEF";
  std::string bytes;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const bool has_two = raw[i] == '%' && i + 2 < raw.size() &&
                         digits.find(raw[i + 1]) != std::string::npos &&
                         digits.find(raw[i + 2]) != std::string::npos;
    if (has_two) {
      bytes += static_cast<char>(std::stoi(raw.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else if (raw[i] == '+') {
      bytes += ' ';
    } else {
      bytes += raw[i];
    }
  }
  return bytes;
}

Parameters ParametersOf(const std::string& url) {
  enum { kBeforeQuery, kName, kValue } state = kBeforeQuery;
  Parameters parameters;
  std::string name;
  std::string value;
  const auto finish = [&] {
    if (state == kValue || !name.empty()) parameters.emplace_back(name, DecodeAgain(value));
    name.clear();
    value.clear();
    state = kName;
  };
  for (const char byte : url) {
    if (byte == '#') break;
    if (state == kBeforeQuery) {
      if (byte == '?') state = kName;
    } else if (byte == '&') {
      finish();
    } else if (state == kName && byte == '=') {
      state = kValue;
    } else {
      (state == kName ? name : value) += byte;
    }
  }
  if (state != kBeforeQuery) finish();
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

TEST(UrlCorpusTest, FollowsTheRulesForEveryUrl) {
  SKIP_WITHOUT_CORPUS(folder, "url-whatwg");
  std::size_t urls = 0;
  std::size_t found = 0;
  for (const nlohmann::json& test : ReadJson(folder / "urltestdata.json")) {
    if (!test.is_object()) continue;  // a comment
    ++urls;
    found += CheckUrl(test.at("input").get<std::string>());
  }
  EXPECT_EQ(urls, 891u);
  EXPECT_GT(found, 30u);
}

TEST(UrlCorpusTest, FollowsTheRulesForEveryQuery) {
  SKIP_WITHOUT_CORPUS(folder, "url-whatwg");
  std::size_t queries = 0;
  std::size_t found = 0;
  for (const nlohmann::json& test : ReadJson(folder / "urlencoded-parser-data.json")) {
    ++queries;
    found += CheckUrl("http://h/?" + test.at("input").get<std::string>());
  }
  EXPECT_EQ(queries, 35u);
  EXPECT_GT(found, 35u);
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

TEST(UrlCorpusTest, AcceptsEveryOtherTextOfTheCorpus) {
  SKIP_WITHOUT_CORPUS(folder, "url-whatwg");
  int urls = 0;
  const nlohmann::json setters = ReadJson(folder / "setters_tests.json");
  for (const auto& [attribute, tests] : setters.items()) {
    if (attribute == "comment") continue;
    for (const nlohmann::json& test : tests) {
      CheckUrl(test.at("href").get<std::string>());
      CheckUrl("http://h/?" + test.at("new_value").get<std::string>());
      ++urls;
    }
  }
  for (const char* file : {"toascii.json", "percent-encoding.json"}) {
    for (const nlohmann::json& test : ReadJson(folder / file)) {
      if (!test.is_object()) continue;
      CheckUrl("http://h/?x=" + test.at("input").get<std::string>());
      ++urls;
    }
  }
  EXPECT_GT(urls, 300);
}

}  // namespace
}  // namespace stowra_test
