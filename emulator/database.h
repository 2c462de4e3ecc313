// SPDX-License-Identifier: MIT
// The SQLite database behind the services.

#ifndef EMULATOR_DATABASE_H_
#define EMULATOR_DATABASE_H_

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace stowra_emulator {

struct DatabaseError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A prepared statement. Preparing, binding and stepping throw DatabaseError on failure. Must not
// outlive its database.
class Statement {
 public:
  Statement(sqlite3* database, std::string_view sql);

  // Each sets the parameter with this number, counted from 1. Text is copied.
  Statement& Bind(int parameter, std::string_view text);
  Statement& BindInt(int parameter, std::int64_t number);
  // For SQL functions that take a pointer of this type.
  Statement& BindPointer(int parameter, void* pointer, const char* type);

  // Moves to the next row. False after the last one.
  bool Step();

  // The columns of the row, counted from 0. NULL gives an empty string or 0.
  bool IsNull(int column) const;
  std::string Text(int column) const;
  int Int(int column) const;
  std::int64_t Int64(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

// Not thread-safe.
class Database {
 public:
  // Opens the file and fills it with seed data if it is new or empty. An empty name means a
  // database in memory. Throws DatabaseError if the file cannot be opened, or another program or
  // version made it.
  explicit Database(const std::string& file);

  Statement Prepare(std::string_view sql) { return Statement(database_.get(), sql); }

  // Runs statements without parameters and ignores their rows. Throws DatabaseError on failure.
  void Execute(const std::string& sql);

 private:
  struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };

  int Number(std::string_view sql);
  void SeedIfNew();

  std::unique_ptr<sqlite3, CloseDatabase> database_;
};

// Commit keeps all changes since construction. Without Commit the destructor undoes them. Until
// then no other program can write. Must not outlive the database.
class Transaction {
 public:
  explicit Transaction(Database& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Commit();

 private:
  Database& database_;
  bool is_open_ = true;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_DATABASE_H_
