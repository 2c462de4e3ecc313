// SPDX-License-Identifier: MIT
// The models and collections of a new database.

#ifndef EMULATOR_CONTENT_CONTENT_SEED_H_
#define EMULATOR_CONTENT_CONTENT_SEED_H_

#include "emulator/database.h"

namespace stowra_emulator {

// Adds a hundred models and six collections, always the same. The tables must be empty.
void SeedContent(Database& database);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_CONTENT_SEED_H_
