// SPDX-License-Identifier: MIT
#include "common_stowraapi/content/content_item.h"

#include "common_stowraapi/content/entry_reader.h"
#include "common_stowraapi/content/item_values.h"
#include "common_stowraapi/content/text_search.h"
#include "common_stowraapi/succeeds.h"

namespace ovrant::stowraapiclient {

using ovrant::utils::ovrant_ustring;

namespace {

constexpr char16_t kQmfMark = u's';
constexpr int kVersionOfBareMark = 5;

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool AreDigits(const ovrant_ustring& text) {
  for (unsigned long i = 0; i < text.length(); ++i) {
    if (!IsDigit(text.at(i))) return false;
  }
  return true;
}

bool StartsWithQmfMark(const ovrant_ustring& text) {
  return !text.empty() && text.at(0) == kQmfMark;
}

}  // namespace

ContentItem::ContentItem() { Clear(); }

ContentItem::~ContentItem() { delete[] thumbnail_buffer_; }

void ContentItem::Clear() {
  kind_ = kCollection;
  download_format_ = kNoDownload;
  for (ovrant_ustring* text :
       {&id_, &title_, &summary_, &author_name_, &author_uri_, &user_query_url_, &author_id_,
        &thumbnail_url_, &download_url_, &collection_feed_url_, &html_url_}) {
    text->clear();
  }
  dynamic_component_ = false;
  classified_component_ = false;
  thumbnail_size_ = 0;
  thumbnail_buffer_ = nullptr;
}

void ContentItem::SetThumbnailBuffer(int size, unsigned char* buffer) {
  delete[] thumbnail_buffer_;
  thumbnail_size_ = size;
  thumbnail_buffer_ = buffer;
}

bool ContentItem::Load(IXMLInput* reader) {
  Clear();
  return Succeeds([&] { return EntryReader(*reader).Read(*this); });
}

bool ContentItem::ExtractQmfVersionFromRTypValue(ovrant_ustring value, int& version) {
  if (!StartsWithQmfMark(value)) return false;
  const ovrant_ustring digits = value.Right(Length(value) - 1);
  if (!AreDigits(digits)) return false;
  version = digits.empty() ? kVersionOfBareMark : digits.to_int();
  return true;
}

}  // namespace ovrant::stowraapiclient
