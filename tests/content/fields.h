// SPDX-License-Identifier: MIT
// All members of a record of the content service, to compare and to show them at once. They stand
// in the order of the class.

#ifndef TESTS_CONTENT_FIELDS_H_
#define TESTS_CONTENT_FIELDS_H_

#include <gtest/gtest.h>

#include <tuple>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/support/text.h"

namespace stowra_test {

// Of a list, only its size.
inline auto Fields(const ovrant::stowraapiclient::ContentQuery& query) {
  return std::make_tuple(query.total_results_, query.start_index_, query.items_per_page_,
                         query.next_url_, query.previous_url_, query.self_url_, query.html_url_,
                         query.title_, query.items_.size());
}
inline auto Fields(const ovrant::stowraapiclient::UploadConfig& config) {
  return std::make_tuple(config.url_, config.success_url_, config.failure_url_,
                         config.files_.size());
}

inline auto Fields(const ovrant::stowraapiclient::UploadFile& file) {
  return std::make_tuple(file.upload_url_, file.type_, file.zipped_, file.name_, file.format_,
                         file.width_, file.height_, file.file_path_, file.opaque_value_,
                         file.zipped_file_path_);
}

// Without the thumbnail and the newest version.
inline auto Fields(const ovrant::stowraapiclient::ContentItem& item) {
  return std::make_tuple(item.kind_, item.download_format_, item.id_, item.title_, item.summary_,
                         item.author_name_, item.author_uri_, item.user_query_url_, item.author_id_,
                         item.thumbnail_url_, item.download_url_, item.collection_feed_url_,
                         item.html_url_, item.dynamic_component_, item.classified_component_);
}

inline void ExpectEmpty(const ovrant::stowraapiclient::ContentQuery& query) {
  EXPECT_EQ(Fields(query), std::make_tuple(0, 1, 12, "", "", "", "", "", 0U));
}

}  // namespace stowra_test

#endif  // TESTS_CONTENT_FIELDS_H_
