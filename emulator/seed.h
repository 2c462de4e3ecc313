// What a new database is filled with.

#ifndef EMULATOR_SEED_H_
#define EMULATOR_SEED_H_

namespace stowra_emulator {

extern const char kSchemaSql[];
extern const char kSeedSql[];

}  // namespace stowra_emulator

#endif  // EMULATOR_SEED_H_
