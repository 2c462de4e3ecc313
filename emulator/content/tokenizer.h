// SPDX-License-Identifier: MIT
// The tokenizer of the word index.

#ifndef EMULATOR_CONTENT_TOKENIZER_H_
#define EMULATOR_CONTENT_TOKENIZER_H_

#include <sqlite3.h>

#include <memory>
#include <string_view>

#include "emulator/database.h"

namespace stowra_emulator {

// Every operation throws DatabaseError on failure. Must not outlive its database.
class Tokenizer {
 public:
  explicit Tokenizer(Database& database);

  // True if the text contains a token of the index: a letter, a digit or a symbol.
  bool FindsAnything(std::string_view text) const;

 private:
  struct Delete {
    void (*function)(Fts5Tokenizer*);
    void operator()(Fts5Tokenizer* tokenizer) const { function(tokenizer); }
  };

  fts5_tokenizer functions_;
  std::unique_ptr<Fts5Tokenizer, Delete> tokenizer_;
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_TOKENIZER_H_
