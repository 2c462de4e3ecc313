// SPDX-License-Identifier: MIT
// The qualified names of a search feed.

#ifndef HOST_CHECK_FEED_VOCABULARY_H_
#define HOST_CHECK_FEED_VOCABULARY_H_

namespace stowra {

inline constexpr char kAtomFeed[] = "http://www.w3.org/2005/Atom:feed";
inline constexpr char kAtomTitle[] = "http://www.w3.org/2005/Atom:title";
inline constexpr char kAtomLink[] = "http://www.w3.org/2005/Atom:link";
inline constexpr char kAtomEntry[] = "http://www.w3.org/2005/Atom:entry";
inline constexpr char kAtomContent[] = "http://www.w3.org/2005/Atom:content";
inline constexpr char kMediaContent[] = "http://search.yahoo.com/mrss/:content";

inline constexpr char kAtomType[] = "application/atom+xml";
inline constexpr char kHtmlType[] = "text/html";
inline constexpr char kQmfType[] = "application/vnd.brevix.qmf";
inline constexpr char kKmzType[] = "application/vnd.pellamy.kmz";

}  // namespace stowra

#endif  // HOST_CHECK_FEED_VOCABULARY_H_
