// SPDX-License-Identifier: MIT
#include "emulator/database.h"

#include "emulator/content/content_seed.h"
#include "emulator/seed.h"

namespace stowra_emulator {
namespace {

// They mark a file as made by this program, with this version of the tables.
constexpr int kApplicationId = 0x53746577;
constexpr int kSchemaVersion = 3;

constexpr int kBusyTimeoutMilliseconds = 2000;

void Check(sqlite3* database, int result) {
  if (result != SQLITE_OK) throw DatabaseError(sqlite3_errmsg(database));
}

}  // namespace

Statement::Statement(sqlite3* database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  Check(database_, sqlite3_prepare_v2(database_, sql.data(), static_cast<int>(sql.size()),
                                      &statement, nullptr));
  statement_.reset(statement);
}

Statement& Statement::Bind(int parameter, std::string_view text) {
  Check(database_, sqlite3_bind_text64(statement_.get(), parameter, text.data(), text.size(),
                                       SQLITE_TRANSIENT, SQLITE_UTF8));
  return *this;
}

Statement& Statement::BindInt(int parameter, std::int64_t number) {
  Check(database_, sqlite3_bind_int64(statement_.get(), parameter, number));
  return *this;
}

Statement& Statement::BindPointer(int parameter, void* pointer, const char* type) {
  Check(database_, sqlite3_bind_pointer(statement_.get(), parameter, pointer, type, nullptr));
  return *this;
}

bool Statement::Step() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) throw DatabaseError(sqlite3_errmsg(database_));
  return false;
}

bool Statement::IsNull(int column) const {
  return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

std::string Statement::Text(int column) const {
  const unsigned char* text = sqlite3_column_text(statement_.get(), column);
  if (text == nullptr) return std::string();
  return std::string(reinterpret_cast<const char*>(text),
                     static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column)));
}

int Statement::Int(int column) const { return sqlite3_column_int(statement_.get(), column); }

std::int64_t Statement::Int64(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

Database::Database(const std::string& file) {
  sqlite3* database = nullptr;
  const int result =
      sqlite3_open_v2(file.empty() ? ":memory:" : file.c_str(), &database,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(database);
  try {
    Check(database, result);
    sqlite3_busy_timeout(database, kBusyTimeoutMilliseconds);
    SeedIfNew();
  } catch (const DatabaseError& error) {
    throw DatabaseError("cannot open the database " + file + ": " + error.what());
  }
}

void Database::Execute(const std::string& sql) {
  Check(database_.get(), sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr));
}

int Database::Number(std::string_view sql) {
  Statement statement = Prepare(sql);
  statement.Step();
  return statement.Int(0);
}

void Database::SeedIfNew() {
  // Takes the lock first. If two programs find the file empty, only one fills it.
  Transaction transaction(*this);
  if (Number("SELECT count(*) FROM sqlite_master") == 0) {
    Execute(kSchemaSql);
    Execute(kSeedSql);
    SeedContent(*this);
    Execute("PRAGMA application_id = " + std::to_string(kApplicationId));
    Execute("PRAGMA user_version = " + std::to_string(kSchemaVersion));
  } else if (Number("PRAGMA application_id") != kApplicationId) {
    throw DatabaseError("it belongs to another program");
  } else if (Number("PRAGMA user_version") != kSchemaVersion) {
    throw DatabaseError("it was made by another version of this program");
  }
  transaction.Commit();
}

Transaction::Transaction(Database& database) : database_(database) {
  database_.Execute("BEGIN IMMEDIATE");
}

Transaction::~Transaction() {
  if (!is_open_) return;
  try {
    database_.Execute("ROLLBACK");
  } catch (const DatabaseError&) {
    // SQLite has already rolled back.
    return;
  }
}

void Transaction::Commit() {
  database_.Execute("COMMIT");
  is_open_ = false;
}

}  // namespace stowra_emulator
