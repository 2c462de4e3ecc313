// SPDX-License-Identifier: MIT
#include "emulator/database.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/emulator/content_fixture.h"
#include "tests/support/corpora.h"
#include "tests/support/temporary_folder.h"

namespace stowra_emulator {
namespace {

using nlohmann::json;

class DatabaseTest : public testing::Test {
 protected:
  // Changes the file while no service uses it.
  void Change(const std::string& sql) { Database(file_).Prepare(sql).Step(); }

  void ExpectRefusal(const std::string& reason) {
    EXPECT_THAT([this] { Database database(file_); },
                ThrowsMessage<DatabaseError>(HasSubstr(reason)));
  }

  // What the services answer from the file.
  std::string Get(const std::string& target, int status = 200) {
    EmulatorOptions options;
    options.database_file = file_;
    return GetFrom(Emulator(options).url(), target, status).body;
  }
  json GetJson(const std::string& target, int status = 200) {
    return json::parse(Get(target, status));
  }

  const stowra_test::TemporaryFolder folder_;
  std::string file_ = (folder_.path() / "services.db").string();
};

int CountUsers(Database& database) {
  Statement count = database.Prepare("SELECT count(*) FROM users");
  EXPECT_TRUE(count.Step());
  return count.Int(0);
}

TEST_F(DatabaseTest, SeedsNewFile) {
  ASSERT_FALSE(std::filesystem::exists(file_));
  Database database(file_);
  EXPECT_TRUE(std::filesystem::exists(file_));
  EXPECT_EQ(CountUsers(database), 5);
}

TEST_F(DatabaseTest, SeedsEmptyFile) {
  std::ofstream(file_).close();
  Database database(file_);
  EXPECT_EQ(CountUsers(database), 5);
}

TEST_F(DatabaseTest, KeepsContentsOfExistingFile) {
  Change("DELETE FROM users WHERE uid = 'u-1002'");
  Database database(file_);
  EXPECT_EQ(CountUsers(database), 4);
}

TEST_F(DatabaseTest, RefusesFileThatIsNoDatabase) {
  std::ofstream(file_) << std::string(4096, 'x');
  ExpectRefusal(file_);
  ExpectRefusal("not a database");
}

TEST_F(DatabaseTest, RefusesAndKeepsDatabaseOfAnotherProgram) {
  Change("PRAGMA application_id = 1");
  const std::string before = stowra_test::ReadFile(file_);
  ExpectRefusal("another program");
  EXPECT_TRUE(stowra_test::ReadFile(file_) == before);
}

TEST_F(DatabaseTest, RefusesDatabaseOfAnotherVersion) {
  Change("PRAGMA user_version = 99");
  ExpectRefusal("another version");
}

TEST_F(DatabaseTest, RefusesFileInMissingFolder) {
  file_ = (folder_.path() / "absent" / "services.db").string();
  ExpectRefusal("unable to open");
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
  EXPECT_THAT(Get("/search?q=wheelbarrow"), HasSubstr("<title>Wheelbarrow</title>"));
  for (const char* gone : {"/search?q=oak", "/search?q=gem%C3%BCtlicher"}) {
    EXPECT_THAT(Get(gone), HasSubstr("totalResults>0<")) << gone;
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
  EXPECT_EQ(GetJson("/user-info").at("displayname"), "Çelik");
}

TEST_F(DatabaseTest, AnswersNotFoundIfNobodyIsSignedIn) {
  Change("UPDATE users SET signed_in = 0");
  Get("/user-info", 404);
}

TEST_F(DatabaseTest, UpdateOmitsAbsentMembers) {
  for (const char* table : {"messages", "application_versions", "data_files"}) {
    Change(std::string("DELETE FROM ") + table);
  }
  EXPECT_EQ(GetJson("/update"), json({{"datafiles", json::array()}}));
}

TEST_F(DatabaseTest, AnswersInternalErrorIfHandlerThrows) {
  Change("DROP TABLE users");
  EXPECT_EQ(GetJson("/user-info", 500).at("error"), "no such table: users");
}

}  // namespace
}  // namespace stowra_emulator
