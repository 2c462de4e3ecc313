// What the index of words takes a text apart with.

#ifndef EMULATOR_CONTENT_TOKENIZER_H_
#define EMULATOR_CONTENT_TOKENIZER_H_

#include <sqlite3.h>

#include <memory>
#include <string_view>

#include "emulator/database.h"

namespace stowra_emulator {

// Every operation throws DatabaseError. Must not outlive its database.
class Tokenizer {
 public:
  explicit Tokenizer(Database& database);

  // Whether there is anything in the text that the index has an entry for: a letter, a digit or a
  // symbol.
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
