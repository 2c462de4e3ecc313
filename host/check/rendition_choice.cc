// SPDX-License-Identifier: MIT
#include "host/check/rendition_choice.h"

#include <fmt/format.h>

#include <cstddef>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/platform/url.h"
#include "host/check/feed_vocabulary.h"

namespace stowra {

using ovrant::stowraapiclient::ContentItem;
using ovrant::utils::ovrant_ustring;

namespace {

// A Media RSS content as it was read.
struct MediaContent {
  std::string url;
  std::string type;
  bool has_url = false;
  bool has_type = false;
};

std::vector<MediaContent> ContentsIn(const std::vector<XmlLookup>& lookups) {
  std::vector<MediaContent> contents;
  for (const XmlLookup& lookup : lookups) {
    if (lookup.path.empty() || lookup.path.back().name != kMediaContent) continue;
    contents.resize(static_cast<std::size_t>(lookup.path.back().number));
    MediaContent& content = contents.back();
    if (lookup.name == "url") {
      content.url = lookup.value;
      content.has_url = lookup.found;
    } else if (lookup.name == "type") {
      content.type = lookup.value;
      content.has_type = lookup.found;
    }
  }
  return contents;
}

// Takes the contents one by one, as the library does.
class Choice {
 public:
  explicit Choice(int max_qmf_version) : max_qmf_version_(max_qmf_version) {}

  void Add(const MediaContent& content) {
    CheckedRendition rendition;
    rendition.url = content.url;
    ovrant_ustring rtyp;
    const bool has_rtyp =
        ovrant::internet::URL(ovrant_ustring(content.url)).getValueForExtraInfoKey("rtyp", rtyp);
    rendition.rtyp = rtyp.utf8();
    renditions_.push_back(rendition);
    renditions_.back().why = Decide(content, has_rtyp, rtyp);
  }

  std::vector<CheckedRendition> Take() { return std::move(renditions_); }

 private:
  std::string Decide(const MediaContent& content, bool has_rtyp, const ovrant_ustring& rtyp) {
    if (!content.has_url) return "it has no url";
    if (!content.has_type) return "it has no type";
    if (content.type != kQmfType && content.type != kKmzType) {
      return fmt::format("its type {} is neither {} nor {}", content.type, kQmfType, kKmzType);
    }
    if (!has_rtyp) return "its URL has no parameter rtyp";
    if (rtyp == "k2") return DecideK2();
    int version = 0;
    if (!ContentItem().ExtractQmfVersionFromRTypValue(rtyp, version)) {
      return "its rtyp is neither k2 nor a version of a model file";
    }
    return DecideVersion(version);
  }

  std::string DecideK2() {
    if (chosen_ != kNone) return fmt::format("rendition {} came before", chosen_ + 1);
    return Choose("chosen until a model file follows that can be opened");
  }

  std::string DecideVersion(int version) {
    if (version > max_qmf_version_) {
      return fmt::format("version {} is above --max-qmf-version {}", version, max_qmf_version_);
    }
    if (version <= 0) return "version 0 is never taken";
    if (version <= best_) {
      return fmt::format("version {} is not above version {} of rendition {}", version, best_,
                         chosen_ + 1);
    }
    best_ = version;
    return Choose(fmt::format("chosen, the newest version up to {}", max_qmf_version_));
  }

  std::string Choose(std::string why) {
    const std::size_t last = renditions_.size() - 1;
    if (chosen_ != kNone) {
      renditions_[chosen_].is_chosen = false;
      renditions_[chosen_].why = fmt::format("rendition {} is a better one", last + 1);
    }
    chosen_ = last;
    renditions_[last].is_chosen = true;
    return why;
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  const int max_qmf_version_;
  int best_ = 0;
  std::size_t chosen_ = kNone;
  std::vector<CheckedRendition> renditions_;
};

}  // namespace

std::vector<CheckedRendition> ExplainRenditions(const std::vector<XmlLookup>& lookups,
                                                int max_qmf_version) {
  Choice choice(max_qmf_version);
  for (const MediaContent& content : ContentsIn(lookups)) choice.Add(content);
  return choice.Take();
}

}  // namespace stowra
