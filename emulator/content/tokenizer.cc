// SPDX-License-Identifier: MIT
#include "emulator/content/tokenizer.h"

#include <array>

namespace stowra_emulator {
namespace {

constexpr const char* kName = "unicode61";

// The same as in the table item_words. Accents do not decide what a token is.
constexpr std::array<const char*, 2> kOptions = {"categories", "L* N* Co So"};

fts5_api& Fts5(Database& database) {
  fts5_api* api = nullptr;
  Statement statement = database.Prepare("SELECT fts5(?)");
  statement.BindPointer(1, &api, "fts5_api_ptr").Step();
  if (api == nullptr) throw DatabaseError("SQLite was built without FTS5");
  return *api;
}

int NoteToken(void* found, int, const char*, int, int, int) {
  *static_cast<bool*>(found) = true;
  return SQLITE_DONE;
}

}  // namespace

Tokenizer::Tokenizer(Database& database) {
  fts5_api& api = Fts5(database);
  void* context = nullptr;
  Fts5Tokenizer* tokenizer = nullptr;
  std::array<const char*, 2> options = kOptions;
  if (api.xFindTokenizer(&api, kName, &context, &functions_) != SQLITE_OK ||
      functions_.xCreate(context, options.data(), static_cast<int>(options.size()), &tokenizer) !=
          SQLITE_OK) {
    throw DatabaseError("cannot create a tokenizer");
  }
  tokenizer_ = {tokenizer, Delete{functions_.xDelete}};
}

bool Tokenizer::FindsAnything(std::string_view text) const {
  bool found = false;
  const int result = functions_.xTokenize(tokenizer_.get(), &found, FTS5_TOKENIZE_QUERY,
                                          text.data(), static_cast<int>(text.size()), NoteToken);
  if (result != SQLITE_OK && result != SQLITE_DONE) throw DatabaseError("cannot tokenize a text");
  return found;
}

}  // namespace stowra_emulator
