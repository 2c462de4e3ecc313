// What the benchmarks read: the same bytes on every machine and in every run.

#ifndef BENCHMARKS_SUPPORT_INPUTS_H_
#define BENCHMARKS_SUPPORT_INPUTS_H_

#include <cstddef>
#include <string>

namespace stowra_bench {

// The update service's answer, about 2 KB: an offer, a message and some data files.
std::string MakeUpdateResponse();

// The extension store's answer for `count` extensions, about 300 bytes each.
std::string MakeExtensionStatus(int count);

// A page of `entries` search results, about 2.75 KB each: titles and summaries in several scripts,
// entities, a thumbnail and six renditions, each fifth one a collection.
std::string MakeFeed(int entries);

// A feed whose one entry has `count` links.
std::string MakeFeedOfLinks(int count);

// A JSON object with `count` text members.
std::string MakeFlatObject(int count);

// UTF-8 texts of exactly `size` bytes: words of ASCII; and words of Latin, Greek, Cyrillic,
// Devanagari, Japanese and emoji with ASCII between them.
std::string MakeAsciiText(std::size_t size);
std::string MakeMixedText(std::size_t size);

// Bytes without a pattern.
std::string MakeBytes(std::size_t size);

}  // namespace stowra_bench

#endif  // BENCHMARKS_SUPPORT_INPUTS_H_
