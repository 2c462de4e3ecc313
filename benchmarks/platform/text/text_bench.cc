// SPDX-License-Identifier: MIT
// UTF-8 to the text type and back, beside the Unicode library used directly and Qt's string.

#include <benchmark/benchmark.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/support/inputs.h"
#include "common_stowraapi/platform/ustring.h"

namespace stowra_bench {
namespace {

using ovrant::utils::ovrant_ustring;
using MakeInput = std::string (*)(std::size_t size);

// Each converter holds one text and converts it one way: a new result each time, freed with it,
// unless it says otherwise. Size is the number of units of the result, from 16-bit units or bytes.

struct StowraDecoder {
  explicit StowraDecoder(const std::string& input) : bytes(input) {}
  std::size_t operator()() const {
    const ovrant_ustring text(bytes.data(), bytes.size());
    return text.length();
  }
  const std::string& bytes;
};

struct StowraEncoder {
  explicit StowraEncoder(const std::string& input) : text(input.data(), input.size()) {}
  std::size_t operator()() const { return text.utf8().size(); }
  const ovrant_ustring text;
};

struct IcuDecoder {
  explicit IcuDecoder(const std::string& input) : bytes(input) {}
  std::size_t operator()() const {
    return static_cast<std::size_t>(icu::UnicodeString::fromUTF8(bytes).length());
  }
  const std::string& bytes;
};

struct IcuEncoder {
  explicit IcuEncoder(const std::string& input) : text(icu::UnicodeString::fromUTF8(input)) {}
  std::size_t operator()() const {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes.size();
  }
  const icu::UnicodeString text;
};

// Into a buffer that is there already and large enough: no allocation at all.
struct IcuBufferDecoder {
  explicit IcuBufferDecoder(const std::string& input) : bytes(input), units(input.size()) {}
  std::size_t operator()() {
    std::int32_t written = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &written, bytes.data(),
                  static_cast<std::int32_t>(bytes.size()), &error);
    benchmark::ClobberMemory();
    return U_SUCCESS(error) ? static_cast<std::size_t>(written) : 0;
  }
  const std::string& bytes;
  std::vector<char16_t> units;
};

struct IcuBufferEncoder {
  explicit IcuBufferEncoder(const std::string& input)
      : text(icu::UnicodeString::fromUTF8(input)), bytes(input.size() + 1) {}
  std::size_t operator()() {
    std::int32_t written = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8(bytes.data(), static_cast<std::int32_t>(bytes.size()), &written, text.getBuffer(),
                text.length(), &error);
    benchmark::ClobberMemory();
    return U_SUCCESS(error) ? static_cast<std::size_t>(written) : 0;
  }
  const icu::UnicodeString text;
  std::vector<char> bytes;
};

struct QtDecoder {
  explicit QtDecoder(const std::string& input) : bytes(input) {}
  std::size_t operator()() const {
    const QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return static_cast<std::size_t>(text.size());
  }
  const std::string& bytes;
};

struct QtEncoder {
  explicit QtEncoder(const std::string& input) : text(QString::fromStdString(input)) {}
  std::size_t operator()() const { return static_cast<std::size_t>(text.toUtf8().size()); }
  const QString text;
};

std::size_t UnitsOf(const std::string& bytes) {
  return static_cast<std::size_t>(icu::UnicodeString::fromUTF8(bytes).length());
}

std::size_t BytesOf(const std::string& bytes) { return bytes.size(); }

template <typename Convert>
void Run(benchmark::State& state, MakeInput make_input,
         std::size_t (*expected)(const std::string&)) {
  const std::string input = make_input(static_cast<std::size_t>(state.range()));
  const std::size_t wanted = expected(input);
  Convert convert(input);
  for (auto _ : state) {
    if (convert() != wanted) state.SkipWithError("not converted");
  }
  state.SetBytesProcessed(state.iterations() * state.range());
}

template <typename Decoder, typename Encoder>
void Register(const std::string& who) {
  const std::pair<const char*, MakeInput> kinds[] = {{"Ascii", MakeAsciiText},
                                                     {"Mixed", MakeMixedText}};
  const std::vector<std::int64_t> short_sizes = {20, 60, 120};
  for (const auto& [kind, make_input] : kinds) {
    const std::string text(kind);
    for (benchmark::internal::Benchmark* const conversion :
         {benchmark::RegisterBenchmark((text + "FromUtf8/" + who).c_str(), Run<Decoder>, make_input,
                                       UnitsOf),
          benchmark::RegisterBenchmark((text + "ToUtf8/" + who).c_str(), Run<Encoder>, make_input,
                                       BytesOf)}) {
      conversion->UseRealTime()->Arg(1'000'000)->Arg(10'000'000);
      for (const std::int64_t size : short_sizes) conversion->Arg(size);
    }
  }
}

[[maybe_unused]] const bool registered = [] {
  Register<StowraDecoder, StowraEncoder>("stowra");
  Register<IcuDecoder, IcuEncoder>("icu");
  Register<IcuBufferDecoder, IcuBufferEncoder>("icu_buffer");
  Register<QtDecoder, QtEncoder>("qt");
  return true;
}();

}  // namespace
}  // namespace stowra_bench
