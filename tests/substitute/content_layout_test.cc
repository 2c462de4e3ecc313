// SPDX-License-Identifier: MIT
// Where the members of the content service's classes lie, what they hold at first, and which
// virtual functions there are: all of it part of the binary interface.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "tests/content/fields.h"
#include "tests/substitute/content_fixture.h"
#include "tests/substitute/member_access.h"
#include "tests/support/slots.h"

namespace stowra_substitute {
namespace {

using stowra_test::CallSlot;
using stowra_test::ExpectEmpty;
using stowra_test::Fields;

static_assert(!std::is_polymorphic_v<ContentQuery>);
static_assert(!std::is_polymorphic_v<ContentItem>);
static_assert(!std::is_polymorphic_v<UploadConfig>);
static_assert(std::has_virtual_destructor_v<UploadFile>);
static_assert(!std::is_copy_constructible_v<ContentQuery>);
static_assert(!std::is_copy_assignable_v<ContentQuery>);
static_assert(!std::is_copy_constructible_v<ContentItem>);
static_assert(!std::is_copy_assignable_v<ContentItem>);

static_assert(std::is_same_v<decltype(ContentQuery::items_), std::vector<ContentItem*>>);
static_assert(std::is_same_v<decltype(UploadConfig::files_), std::vector<UploadFile>>);
static_assert(std::is_same_v<decltype(UploadFile::opaque_value_), std::uint64_t>);

using Text = ovrant::utils::ovrant_ustring;

// In memory in which no byte is zero, so that a member which the constructor leaves out shows.
template <typename Class>
class OnNoise {
 public:
  OnNoise() {
    std::memset(place_, 0xA5, sizeof(place_));
    object_ = ::new (place_) Class;
  }
  ~OnNoise() { object_->~Class(); }

  OnNoise(const OnNoise&) = delete;
  OnNoise& operator=(const OnNoise&) = delete;

  const Class& operator*() const { return *object_; }
  const Class* operator->() const { return object_; }

 private:
  alignas(Class) unsigned char place_[sizeof(Class)];
  Class* object_;
};

class ContentLayoutTest : public ContentTest {};

TEST_F(ContentLayoutTest, MembersLieInTheirOrder) {
  ExpectMembers<ContentQuery, int, int, int, int, Text, Text, Text, Text, Text,
                std::vector<ContentItem*>>(
      0, &ContentQuery::total_results_, &ContentQuery::start_index_, &ContentQuery::items_per_page_,
      &ContentQuery::max_qmf_version_, &ContentQuery::next_url_, &ContentQuery::previous_url_,
      &ContentQuery::self_url_, &ContentQuery::html_url_, &ContentQuery::title_,
      &ContentQuery::items_);
  ExpectMembers<ContentItem, int, int, Text, Text, Text, Text, Text, Text, Text, Text, Text, Text,
                Text, bool, bool, int, unsigned char*, int>(
      0, &ContentItem::kind_, &ContentItem::download_format_, &ContentItem::id_,
      &ContentItem::title_, &ContentItem::summary_, &ContentItem::author_name_,
      &ContentItem::author_uri_, &ContentItem::user_query_url_, &ContentItem::author_id_,
      &ContentItem::thumbnail_url_, &ContentItem::download_url_, &ContentItem::collection_feed_url_,
      &ContentItem::html_url_, &ContentItem::dynamic_component_,
      &ContentItem::classified_component_, &ContentItem::thumbnail_size_,
      &ContentItem::thumbnail_buffer_, &ContentItem::max_qmf_version_);
  ExpectMembers<UploadConfig, Text, Text, Text, std::vector<UploadFile>>(
      0, &UploadConfig::url_, &UploadConfig::success_url_, &UploadConfig::failure_url_,
      &UploadConfig::files_);
  ExpectMembers<UploadFile, Text, Text, bool, Text, Text, int, int, Text, std::uint64_t, Text>(
      sizeof(void*), &UploadFile::upload_url_, &UploadFile::type_, &UploadFile::zipped_,
      &UploadFile::name_, &UploadFile::format_, &UploadFile::width_, &UploadFile::height_,
      &UploadFile::file_path_, &UploadFile::opaque_value_, &UploadFile::zipped_file_path_);
}

TEST_F(ContentLayoutTest, FreshObjectsHaveTheirDefaults) {
  const OnNoise<ContentQuery> query;
  ExpectEmpty(*query);
  EXPECT_EQ(query->max_qmf_version_, 0);

  const OnNoise<ContentItem> item;
  EXPECT_EQ(Fields(*item),
            std::make_tuple(1, 0, "", "", "", "", "", "", "", "", "", "", "", false, false));
  EXPECT_EQ(item->thumbnail_size_, 0);
  EXPECT_EQ(item->thumbnail_buffer_, nullptr);
  EXPECT_EQ(item->max_qmf_version_, 0);

  EXPECT_EQ(Fields(UploadConfig()), std::make_tuple("", "", "", 0U));
  EXPECT_EQ(Fields(*OnNoise<UploadFile>()),
            std::make_tuple("", "", false, "", "", 0, 0, "", 0U, ""));
}

// The first virtual function of a derived class stands behind those of its base.
class RecordingFile : public UploadFile {
 public:
  ~RecordingFile() override { Record("destroyed"); }
  virtual void First() { Record("first own function"); }

  static void* operator new(std::size_t size) { return ::operator new(size); }
  static void* operator new(std::size_t, void* place) { return place; }
  static void operator delete(void* memory) {
    Record("freed");
    ::operator delete(memory);
  }
};

TEST_F(ContentLayoutTest, AnUploadFileHasItsTwoDestructorsAndNoOtherVirtualFunction) {
  alignas(RecordingFile) unsigned char place[sizeof(RecordingFile)];
  auto* const file = new (place) RecordingFile;
  EXPECT_EQ(static_cast<void*>(static_cast<UploadFile*>(file)), file);
  CallSlot(file, 2);
  EXPECT_EQ(TakeText(), "first own function");
  CallSlot(file, 0);
  EXPECT_EQ(TakeText(), "destroyed");
  CallSlot(new RecordingFile, 1);
  EXPECT_EQ(TakeText(), "destroyed | freed");
}

// Of the class itself, as the library compiled it. Memory that is not freed, or freed twice, shows
// under AddressSanitizer.
TEST_F(ContentLayoutTest, DestructorsOfAnUploadFile) {
  alignas(UploadFile) unsigned char place[sizeof(UploadFile)];
  auto* const file = ::new (place) UploadFile;
  file->zipped_file_path_ = "a text that is too long to lie inside the string";
  CallSlot(file, 0);
  CallSlot(new UploadFile(*std::make_unique<UploadFile>()), 1);
}

}  // namespace
}  // namespace stowra_substitute
