// SPDX-License-Identifier: MIT
// Inputs of the benchmarks. They have the same bytes on every machine and in every run.

#ifndef BENCHMARKS_SUPPORT_INPUTS_H_
#define BENCHMARKS_SUPPORT_INPUTS_H_

#include <cstddef>
#include <string>

namespace stowra_bench {

// The update service's answer, about 2 KB, with an offer, a message and some data files.
std::string MakeUpdateResponse();

// The extension store's answer for `count` extensions, about 300 bytes each.
std::string MakeExtensionStatus(int count);

// A page of `entries` search results, about 2.75 KB each. An entry has texts in several scripts,
// entities, two thumbnails and six renditions. On average every fifth entry is a collection.
std::string MakeFeed(int entries);

// A feed whose one entry has `count` links.
std::string MakeFeedOfLinks(int count);

// A JSON object with `count` text members.
std::string MakeFlatObject(int count);

// UTF-8 texts of exactly `size` bytes. The mixed text has words in Latin, Greek, Cyrillic,
// Devanagari and Japanese, emoji, and ASCII between them.
std::string MakeAsciiText(std::size_t size);
std::string MakeMixedText(std::size_t size);

// Random bytes.
std::string MakeBytes(std::size_t size);

}  // namespace stowra_bench

#endif  // BENCHMARKS_SUPPORT_INPUTS_H_
