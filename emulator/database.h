// The SQLite database that the services answer from.

#ifndef EMULATOR_DATABASE_H_
#define EMULATOR_DATABASE_H_

#include <sqlite3.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace stowra_emulator {

struct DatabaseError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A prepared statement. Every operation throws DatabaseError. Must not outlive its database.
class Statement {
 public:
  Statement(sqlite3* database, std::string_view sql);

  // Sets the parameter of that number, from 1. Bytes are not copied: they must stay until Step has
  // returned.
  Statement& Bind(int parameter, std::string_view text);
  Statement& BindInt(int parameter, int number);
  Statement& BindBytes(int parameter, std::string_view bytes);
  // For the functions of SQLite that take a pointer of that type.
  Statement& BindPointer(int parameter, void* pointer, const char* type);

  // Moves to the next row; false after the last one.
  bool Step();

  // The columns of the row, from 0. A null gives the empty text or 0.
  bool IsNull(int column) const;
  std::string Text(int column) const;
  int Int(int column) const;
  std::string Bytes(int column) const;

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

// One thread at a time.
class Database {
 public:
  // Opens the file, and fills it with the seed if it is new or empty. An empty name stands for a
  // database in memory. Throws DatabaseError when it cannot be read, or is not one of ours.
  explicit Database(const std::string& file);

  Statement Prepare(std::string_view sql) { return Statement(database_.get(), sql); }

  // Runs statements that have no parameters and of whose rows nothing is wanted.
  void Execute(const std::string& sql);

 private:
  struct CloseDatabase {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
  };

  int Number(std::string_view sql);
  void SeedIfNew();

  std::unique_ptr<sqlite3, CloseDatabase> database_;
};

// What is done to the database between its construction and Commit: all of it, or, without Commit,
// nothing. Other programs do not write in the meantime. Must not outlive the database.
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
