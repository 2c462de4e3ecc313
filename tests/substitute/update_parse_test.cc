// SPDX-License-Identifier: MIT
// What UpdateQuery reads from an answer, and what it keeps from the one before.

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "tests/services/fields.h"
#include "tests/substitute/fixture.h"

namespace stowra_substitute {
namespace {

using ovrant::webservices::DataFileData;
using ovrant::webservices::UpdateQuery;
using stowra_test::Fields;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kEarlier[] = R"({"update":{"current_version":"2","expire_version":"1"},)"
                            R"("message":{"id":5,"max_shows":6,"width":7,"height":8,)"
                            R"("title":"old","url":"http://old/"},)"
                            R"("datafiles":[{"version":9,"filename":"f","url":"u"}]})";
constexpr std::tuple kEarlierMessage(5, 6, 7, 8, "old", "http://old/");

class UpdateParseTest : public testing::Test {
 protected:
  // The current version and the one that expires, such as "2|1".
  static std::string Versions(const UpdateQuery& parsed) {
    return parsed.current_version_.utf8() + "|" + parsed.expire_version_.utf8();
  }

  // Parses an answer that has only a message.
  void ParseMessage(const std::string& message) {
    EXPECT_FALSE(query.ParseResponse((R"({"message":)" + message + "}").c_str())) << message;
  }

  // The data files, such as "3|name|url".
  std::vector<std::string> DataFiles() const {
    std::vector<std::string> records;
    for (const DataFileData& file : query.data_files_) {
      records.push_back(std::to_string(file.version) + "|" + file.filename.utf8() + "|" +
                        file.url.utf8());
    }
    return records;
  }

  // The data files of an answer that has nothing else.
  std::vector<std::string> ParseDataFiles(const std::string& datafiles) {
    EXPECT_FALSE(query.ParseResponse((R"({"datafiles":)" + datafiles + "}").c_str())) << datafiles;
    return DataFiles();
  }

  auto Message() const { return Fields(query.message_); }

  UpdateQuery query;
};

TEST_F(UpdateParseTest, ReadsEveryMember) {
  EXPECT_TRUE(query.ParseResponse(kEarlier));
  EXPECT_EQ(Versions(query), "2|1");
  EXPECT_EQ(Message(), kEarlierMessage);
  EXPECT_THAT(DataFiles(), ElementsAre("9|f|u"));
}

struct UpdateCase {
  const char* update;
  bool valid_when_fresh;
  bool valid_after_earlier;  // after versions "2" and "1"
  const char* versions_when_fresh;
  const char* versions_after_earlier;
};

TEST_F(UpdateParseTest, UpdateDecidesTheResult) {
  const UpdateCase cases[] = {
      {R"({"current_version":"a","expire_version":"b"})", true, true, "a|b", "a|b"},
      {R"({"current_version":"a"})", false, false, "a|", "a|1"},
      {R"({"expire_version":"b"})", false, true, "|b", "2|b"},
      {R"({"current_version":"a","expire_version":7})", false, true, "a|", "a|1"},
      {R"({"current_version":"a","expire_version":null})", false, true, "a|", "a|1"},
      {R"({"expire_version":[]})", false, true, "|", "2|1"},
      {R"({"current_version":7,"expire_version":"b"})", false, true, "|b", "2|b"},
      {R"({"current_version":null,"expire_version":{}})", false, true, "|", "2|1"},
      {R"({"current_version":"","expire_version":""})", false, false, "|", "|"},
      {R"({"current_version":"","expire_version":"b"})", false, false, "|b", "|b"},
      {R"({"current_version":"a","expire_version":""})", false, false, "a|", "a|"},
      {R"({"Current_version":"a","Expire_version":"b"})", false, false, "|", "2|1"},
      {R"({"expire_version":"b","current_version":"a"})", true, true, "a|b", "a|b"},
      {R"({"current_version":"a","current_version":"c","expire_version":"b"})", true, true, "a|b",
       "a|b"},
      {R"({})", false, false, "|", "2|1"},
      {R"([{"current_version":"a","expire_version":"b"}])", false, false, "|", "2|1"},
      {R"(["current_version","expire_version"])", false, false, "|", "2|1"},
      {R"("expire_version")", false, false, "|", "2|1"},
      {"null", false, false, "|", "2|1"},
      {"true", false, false, "|", "2|1"},
      {"5", false, false, "|", "2|1"},
      {R"({"current_version":"a\u0000x","expire_version":"b"})", true, true, "a|b", "a|b"},
      {R"({"current_version":"\u0000x","expire_version":"b"})", false, false, "|b", "|b"},
  };
  for (const UpdateCase& one : cases) {
    const std::string answer = std::string(R"({"update":)") + one.update + "}";
    UpdateQuery fresh;
    EXPECT_EQ(fresh.ParseResponse(answer.c_str()), one.valid_when_fresh) << one.update;
    EXPECT_EQ(Versions(fresh), one.versions_when_fresh) << one.update;

    ASSERT_TRUE(query.ParseResponse(kEarlier));
    EXPECT_EQ(query.ParseResponse(answer.c_str()), one.valid_after_earlier) << one.update;
    EXPECT_EQ(Versions(query), one.versions_after_earlier) << one.update;
  }
}

TEST_F(UpdateParseTest, FirstOfRepeatedUpdatesCounts) {
  EXPECT_FALSE(query.ParseResponse(R"({"update":{"current_version":"a"},)"
                                   R"("update":{"current_version":"b","expire_version":"c"}})"));
  EXPECT_EQ(Versions(query), "a|");
}

TEST_F(UpdateParseTest, VersionsKeptFromEarlierDoNotCountWithoutAnUpdate) {
  ASSERT_TRUE(query.ParseResponse(kEarlier));
  EXPECT_FALSE(query.ParseResponse(R"({"message":{"id":1}})"));
  EXPECT_FALSE(query.ParseResponse("{}"));
  EXPECT_EQ(Versions(query), "2|1");
}

TEST_F(UpdateParseTest, UnreadableBodyEmptiesDataFilesAndKeepsTheRest) {
  for (const char* const body : {"", " ", "{", "null", "17", "\"update\"", "[]", "{} x",
                                 R"([{"update":{"current_version":"a","expire_version":"b"}}])",
                                 R"({"update":{"current_version":"a","expire_version":"b"})"}) {
    ASSERT_TRUE(query.ParseResponse(kEarlier));
    EXPECT_FALSE(query.ParseResponse(body)) << body;
    EXPECT_THAT(query.data_files_, IsEmpty()) << body;
    EXPECT_EQ(Versions(query), "2|1") << body;
    EXPECT_EQ(Message(), kEarlierMessage) << body;
  }
}

TEST_F(UpdateParseTest, MessageMembersOfAnotherTypeKeepTheirValues) {
  ASSERT_TRUE(query.ParseResponse(kEarlier));
  for (const char* const message :
       {R"({"id":"1","max_shows":"2","width":"3","height":"4","title":5,"url":6})",
        R"({"id":true,"max_shows":null,"width":[1],"height":{},"title":null,"url":["u"]})",
        R"({"ID":1,"Title":"new"})", "{}", "[]", R"([{"id":1}])", R"("id")", "null", "7"}) {
    ParseMessage(message);
    EXPECT_EQ(Message(), kEarlierMessage) << message;
  }
}

TEST_F(UpdateParseTest, MessageStaysWhenALaterAnswerHasNone) {
  ASSERT_TRUE(query.ParseResponse(kEarlier));
  ASSERT_TRUE(query.ParseResponse(R"({"update":{"current_version":"3","expire_version":"2"}})"));
  EXPECT_EQ(Message(), kEarlierMessage);
}

TEST_F(UpdateParseTest, MessageNeverAffectsTheResult) {
  EXPECT_TRUE(query.ParseResponse(
      R"({"message":17,"update":{"current_version":"a","expire_version":"b"},"datafiles":17})"));
}

TEST_F(UpdateParseTest, EachMessageMemberIsReadAlone) {
  ParseMessage(R"({"max_shows":21})");
  EXPECT_EQ(Message(), std::make_tuple(-1, 21, 430, 540, "", ""));
  ParseMessage(R"({"id":20})");
  EXPECT_EQ(Message(), std::make_tuple(20, 21, 430, 540, "", ""));
  ParseMessage(R"({"width":22})");
  EXPECT_EQ(Message(), std::make_tuple(20, 21, 22, 540, "", ""));
  ParseMessage(R"({"height":23})");
  EXPECT_EQ(Message(), std::make_tuple(20, 21, 22, 23, "", ""));
  ParseMessage(R"({"title":"\u00e9"})");
  EXPECT_EQ(Message(), std::make_tuple(20, 21, 22, 23, "\xC3\xA9", ""));
  ParseMessage(R"({"url":"u"})");
  EXPECT_EQ(Message(), std::make_tuple(20, 21, 22, 23, "\xC3\xA9", "u"));
}

TEST_F(UpdateParseTest, NumbersAreReadAs32Bits) {
  const std::pair<const char*, int> numbers[] = {{"0", 0},
                                                 {"-7", -7},
                                                 {"2147483647", INT_MAX},
                                                 {"-2147483648", INT_MIN},
                                                 {"4294967295", -1},
                                                 {"4294967297", 1},
                                                 {"7.9", 7},
                                                 {"-7.9", -7},
                                                 {"1e3", 1000},
                                                 {"1e300", 0}};
  for (const auto& [number, value] : numbers) {
    ParseMessage(std::string(R"({"id":)") + number + "}");
    EXPECT_EQ(query.message_.id, value) << number;
  }
}

TEST_F(UpdateParseTest, DataFilesKeepTheOrderOfTheAnswer) {
  EXPECT_THAT(ParseDataFiles(R"([{"version":2,"filename":"b","url":"v"},)"
                             R"({"version":1,"filename":"a","url":"u"}])"),
              ElementsAre("2|b|v", "1|a|u"));
}

TEST_F(UpdateParseTest, DataFilesThatAreNoObjectsAreSkipped) {
  EXPECT_THAT(ParseDataFiles(R"([{"version":1},"x",{"version":2},null,3,[{"version":4}],true])"),
              ElementsAre("1||", "2||"));
}

TEST_F(UpdateParseTest, MissingOrMistypedMembersOfADataFileHaveTheDefaults) {
  EXPECT_THAT(
      ParseDataFiles(R"([{},{"version":"1","filename":2,"url":null},{"filename":"f"},{"url":"u"},)"
                     R"({"Version":1,"version":-3.7}])"),
      ElementsAre("-1||", "-1||", "-1|f|", "-1||u", "-3||"));
}

TEST_F(UpdateParseTest, DataFilesThatAreNoArrayAddNothing) {
  for (const char* const datafiles : {"[]", "{}", R"({"version":1})", R"("x")", "null", "3"}) {
    ASSERT_TRUE(query.ParseResponse(kEarlier));
    EXPECT_THAT(ParseDataFiles(datafiles), IsEmpty()) << datafiles;
  }
}

TEST_F(UpdateParseTest, DataFilesReplaceTheEarlierOnes) {
  ASSERT_TRUE(query.ParseResponse(kEarlier));
  ASSERT_TRUE(query.ParseResponse(kEarlier));
  EXPECT_EQ(query.data_files_.size(), 1U);
  EXPECT_THAT(ParseDataFiles(R"([{"version":3}])"), ElementsAre("3||"));
  EXPECT_FALSE(query.ParseResponse("{}"));
  EXPECT_THAT(query.data_files_, IsEmpty());
}

}  // namespace
}  // namespace stowra_substitute
