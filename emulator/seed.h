// SPDX-License-Identifier: MIT
// The tables of a new database, and its contents except the models and collections.

#ifndef EMULATOR_SEED_H_
#define EMULATOR_SEED_H_

namespace stowra_emulator {

extern const char kSchemaSql[];
extern const char kSeedSql[];

}  // namespace stowra_emulator

#endif  // EMULATOR_SEED_H_
