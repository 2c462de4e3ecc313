// SPDX-License-Identifier: MIT
#include "emulator/database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "emulator/emulator.h"

namespace stowra_emulator {
namespace {

using testing::HasSubstr;

class DatabaseTest : public testing::Test {
 protected:
  DatabaseTest() {
    std::string name = (std::filesystem::temp_directory_path() / "emulator-XXXXXX").string();
    EXPECT_NE(::mkdtemp(name.data()), nullptr);
    folder_ = name;
    file_ = folder_ / "services.db";
  }
  ~DatabaseTest() override { std::filesystem::remove_all(folder_); }

  // Changes the file while no service uses it.
  void Change(const std::string& sql) { Database(file_.string()).Prepare(sql).Step(); }

  std::string Contents() {
    std::ifstream file(file_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  std::string ErrorOfOpening() {
    try {
      Database database(file_.string());
      return "no error";
    } catch (const DatabaseError& error) {
      return error.what();
    }
  }

  httplib::Result Get(const std::string& target) {
    EmulatorOptions options;
    options.database_file = file_.string();
    const Emulator emulator(options);
    return httplib::Client(emulator.url()).Get(target);
  }

  std::filesystem::path folder_;
  std::filesystem::path file_;
};

int CountUsers(Database& database) {
  Statement count = database.Prepare("SELECT count(*) FROM users");
  EXPECT_TRUE(count.Step());
  return count.Int(0);
}

TEST_F(DatabaseTest, SeedsNewFile) {
  ASSERT_FALSE(std::filesystem::exists(file_));
  Database database(file_.string());
  EXPECT_TRUE(std::filesystem::exists(file_));
  EXPECT_EQ(CountUsers(database), 5);
}

TEST_F(DatabaseTest, SeedsEmptyFile) {
  std::ofstream(file_).close();
  Database database(file_.string());
  EXPECT_EQ(CountUsers(database), 5);
}

TEST_F(DatabaseTest, KeepsContentsOfExistingFile) {
  Change("DELETE FROM users WHERE uid = 'u-1002'");
  Database database(file_.string());
  EXPECT_EQ(CountUsers(database), 4);
}

TEST_F(DatabaseTest, RefusesFileThatIsNoDatabase) {
  std::ofstream(file_) << std::string(4096, 'x');
  EXPECT_THAT(ErrorOfOpening(), HasSubstr(file_.string()));
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("not a database"));
}

TEST_F(DatabaseTest, RefusesAndKeepsDatabaseOfAnotherProgram) {
  Change("PRAGMA application_id = 1");
  const std::string before = Contents();
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("another program"));
  EXPECT_TRUE(Contents() == before);
}

TEST_F(DatabaseTest, RefusesDatabaseOfAnotherVersion) {
  Change("PRAGMA user_version = 99");
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("another version"));
}

TEST_F(DatabaseTest, RefusesFileInMissingFolder) {
  file_ = folder_ / "absent" / "services.db";
  EXPECT_THAT(ErrorOfOpening(), HasSubstr("unable to open"));
}

TEST_F(DatabaseTest, KeepsDatabasesInMemorySeparate) {
  Database first("");
  Database second("");
  first.Prepare("DELETE FROM users").Step();
  EXPECT_EQ(CountUsers(first), 0);
  EXPECT_EQ(CountUsers(second), 5);
}

TEST_F(DatabaseTest, ThrowsOnBadSqlAndBrokenConstraints) {
  Database database("");
  EXPECT_THROW(database.Prepare("SELECT nonsense"), DatabaseError);
  Statement insert = database.Prepare("UPDATE users SET signed_in = 1 WHERE uid = ?");
  EXPECT_THROW(insert.Bind(2, "u-1002"), DatabaseError);
  insert.Bind(1, "u-1002");
  EXPECT_THROW(insert.Step(), DatabaseError) << "only one user may be signed in";
}

TEST_F(DatabaseTest, UndoesTransactionWithoutCommit) {
  Database database("");
  {
    Transaction transaction(database);
    database.Execute("DELETE FROM users");
    EXPECT_EQ(CountUsers(database), 0);
  }
  EXPECT_EQ(CountUsers(database), 5);
  Transaction transaction(database);
  database.Execute("DELETE FROM users");
  transaction.Commit();
  EXPECT_EQ(CountUsers(database), 0);
}

TEST_F(DatabaseTest, ReturnsBoundNumbers) {
  Database database("");
  Statement echo = database.Prepare("SELECT ?, ?");
  echo.BindInt(1, -7).BindInt(2, 5000000000);
  ASSERT_TRUE(echo.Step());
  EXPECT_EQ(echo.Int(0), -7);
  EXPECT_EQ(echo.Int64(1), 5000000000);
}

TEST_F(DatabaseTest, SearchFindsChangesInTheFile) {
  Change("UPDATE items SET title = 'Wheelbarrow', summary = '' WHERE mid = 'm-1001'");
  Change("DELETE FROM items WHERE mid = 'm-1011'");
  EXPECT_THAT(Get("/search?q=wheelbarrow")->body, HasSubstr("<title>Wheelbarrow</title>"));
  for (const char* gone : {"/search?q=oak", "/search?q=gem%C3%BCtlicher"}) {
    EXPECT_THAT(Get(gone)->body, HasSubstr("totalResults>0<")) << gone;
  }
}

TEST_F(DatabaseTest, TextKeepsEveryByte) {
  Database database("");
  const std::string text("a\0b\xC3\xA9", 5);
  Statement echo = database.Prepare("SELECT ?, NULL");
  echo.Bind(1, text);
  ASSERT_TRUE(echo.Step());
  EXPECT_EQ(echo.Text(0), text);
  EXPECT_FALSE(echo.IsNull(0));
  EXPECT_TRUE(echo.IsNull(1));
  EXPECT_EQ(echo.Text(1), "");
  EXPECT_FALSE(echo.Step());
}

TEST_F(DatabaseTest, ServicesAnswerFromTheFile) {
  Change("UPDATE users SET displayname = 'Çelik' WHERE uid = 'u-1001'");
  const httplib::Result result = Get("/user-info");
  ASSERT_TRUE(result);
  EXPECT_EQ(nlohmann::json::parse(result->body).at("displayname"), "Çelik");
}

TEST_F(DatabaseTest, AnswersNotFoundIfNobodyIsSignedIn) {
  Change("UPDATE users SET signed_in = 0");
  const httplib::Result result = Get("/user-info");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 404);
}

TEST_F(DatabaseTest, UpdateOmitsAbsentMembers) {
  Change("DELETE FROM messages");
  Change("DELETE FROM application_versions");
  Change("DELETE FROM data_files");
  const httplib::Result result = Get("/update");
  ASSERT_TRUE(result);
  EXPECT_EQ(nlohmann::json::parse(result->body),
            nlohmann::json({{"datafiles", nlohmann::json::array()}}));
}

TEST_F(DatabaseTest, AnswersInternalErrorIfHandlerThrows) {
  Change("DROP TABLE users");
  const httplib::Result result = Get("/user-info");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 500);
  EXPECT_EQ(nlohmann::json::parse(result->body).at("error"), "no such table: users");
}

}  // namespace
}  // namespace stowra_emulator
