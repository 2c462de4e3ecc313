// Where the members of the content service's classes lie, what they hold at first, and which
// virtual functions there are: all of it part of the binary interface.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "common_stowraapi/content/content_item.h"
#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/content/upload_config.h"
#include "tests/substitute/content_fixture.h"
#include "tests/substitute/member_access.h"

#if defined(__clang__)
#define STOWRA_ANY_FUNCTION_TYPE __attribute__((no_sanitize("function")))
#else
#define STOWRA_ANY_FUNCTION_TYPE
#endif

namespace stowra_substitute {
namespace {

using ovrant::stowraapiclient::ContentItem;
using ovrant::stowraapiclient::ContentQuery;
using ovrant::stowraapiclient::UploadConfig;
using ovrant::stowraapiclient::UploadFile;
using ovrant::utils::ovrant_ustring;
using testing::ElementsAre;

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

using Text = Room<ovrant_ustring>;

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

 private:
  alignas(Class) unsigned char place_[sizeof(Class)];
  Class* object_;
};

class ContentLayoutTest : public ContentTest {};

TEST_F(ContentLayoutTest, ContentQuery) {
  struct Mirror {
    std::int32_t total, start, per_page, max_version;
    Text next, previous, self, html, title;
    Room<std::vector<void*>> items;
  };
  const ContentQuery query;
  EXPECT_EQ(OffsetIn(query, &ContentQuery::total_results_), offsetof(Mirror, total));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::start_index_), offsetof(Mirror, start));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::items_per_page_), offsetof(Mirror, per_page));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::max_qmf_version_), offsetof(Mirror, max_version));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::next_url_), offsetof(Mirror, next));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::previous_url_), offsetof(Mirror, previous));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::self_url_), offsetof(Mirror, self));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::html_url_), offsetof(Mirror, html));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::title_), offsetof(Mirror, title));
  EXPECT_EQ(OffsetIn(query, &ContentQuery::items_), offsetof(Mirror, items));
  EXPECT_EQ(sizeof(query), sizeof(Mirror));
}

TEST_F(ContentLayoutTest, AFreshContentQueryIsEmpty) {
  const OnNoise<ContentQuery> fresh;
  const ContentQuery& query = *fresh;
  EXPECT_EQ(query.total_results_, 0);
  EXPECT_EQ(query.start_index_, 1);
  EXPECT_EQ(query.items_per_page_, 12);
  EXPECT_EQ(query.max_qmf_version_, 0);
  for (const ovrant_ustring* text : {&query.next_url_, &query.previous_url_, &query.self_url_,
                                     &query.html_url_, &query.title_}) {
    EXPECT_TRUE(text->empty());
  }
  EXPECT_TRUE(query.items_.empty());
}

constexpr ovrant_ustring ContentItem::*kItemTexts[] = {
    &ContentItem::id_,           &ContentItem::title_,
    &ContentItem::summary_,      &ContentItem::author_name_,
    &ContentItem::author_uri_,   &ContentItem::user_query_url_,
    &ContentItem::author_id_,    &ContentItem::thumbnail_url_,
    &ContentItem::download_url_, &ContentItem::collection_feed_url_,
    &ContentItem::html_url_};

TEST_F(ContentLayoutTest, ContentItem) {
  struct Mirror {
    std::int32_t kind, format;
    Text texts[11];
    bool dynamic, classified;
    std::int32_t thumbnail_size;
    unsigned char* thumbnail;
    std::int32_t max_version;
  };
  const ContentItem item;
  EXPECT_EQ(OffsetIn(item, &ContentItem::kind_), offsetof(Mirror, kind));
  EXPECT_EQ(OffsetIn(item, &ContentItem::download_format_), offsetof(Mirror, format));
  std::size_t offset = offsetof(Mirror, texts);
  for (const auto text : kItemTexts) {
    EXPECT_EQ(OffsetIn(item, text), offset);
    offset += sizeof(Text);
  }
  EXPECT_EQ(OffsetIn(item, &ContentItem::dynamic_component_), offsetof(Mirror, dynamic));
  EXPECT_EQ(OffsetIn(item, &ContentItem::classified_component_), offsetof(Mirror, classified));
  EXPECT_EQ(OffsetIn(item, &ContentItem::thumbnail_size_), offsetof(Mirror, thumbnail_size));
  EXPECT_EQ(OffsetIn(item, &ContentItem::thumbnail_buffer_), offsetof(Mirror, thumbnail));
  EXPECT_EQ(OffsetIn(item, &ContentItem::max_qmf_version_), offsetof(Mirror, max_version));
  EXPECT_EQ(sizeof(item), sizeof(Mirror));
}

TEST_F(ContentLayoutTest, AFreshContentItemHasItsDefaults) {
  const OnNoise<ContentItem> fresh;
  const ContentItem& item = *fresh;
  EXPECT_EQ(item.kind_, 1);
  EXPECT_EQ(item.download_format_, 0);
  for (const auto text : kItemTexts) EXPECT_TRUE((item.*text).empty());
  EXPECT_FALSE(item.dynamic_component_);
  EXPECT_FALSE(item.classified_component_);
  EXPECT_EQ(item.thumbnail_size_, 0);
  EXPECT_EQ(item.thumbnail_buffer_, nullptr);
  EXPECT_EQ(item.max_qmf_version_, 0);
}

TEST_F(ContentLayoutTest, UploadConfig) {
  struct Mirror {
    Text url, success_url, failure_url;
    Room<std::vector<UploadFile>> files;
  };
  const UploadConfig config;
  EXPECT_EQ(OffsetIn(config, &UploadConfig::url_), offsetof(Mirror, url));
  EXPECT_EQ(OffsetIn(config, &UploadConfig::success_url_), offsetof(Mirror, success_url));
  EXPECT_EQ(OffsetIn(config, &UploadConfig::failure_url_), offsetof(Mirror, failure_url));
  EXPECT_EQ(OffsetIn(config, &UploadConfig::files_), offsetof(Mirror, files));
  EXPECT_EQ(sizeof(config), sizeof(Mirror));
  EXPECT_EQ(config.url_, "");
  EXPECT_EQ(config.success_url_, "");
  EXPECT_EQ(config.failure_url_, "");
  EXPECT_TRUE(config.files_.empty());
}

TEST_F(ContentLayoutTest, UploadFile) {
  struct Mirror {
    void* vtable;
    Text upload_url, type;
    bool zipped;
    Text name, format;
    std::int32_t width, height;
    Text file_path;
    std::uint64_t opaque;
    Text zipped_file_path;
  };
  const UploadFile file;
  EXPECT_EQ(OffsetIn(file, &UploadFile::upload_url_), offsetof(Mirror, upload_url));
  EXPECT_EQ(OffsetIn(file, &UploadFile::type_), offsetof(Mirror, type));
  EXPECT_EQ(OffsetIn(file, &UploadFile::zipped_), offsetof(Mirror, zipped));
  EXPECT_EQ(OffsetIn(file, &UploadFile::name_), offsetof(Mirror, name));
  EXPECT_EQ(OffsetIn(file, &UploadFile::format_), offsetof(Mirror, format));
  EXPECT_EQ(OffsetIn(file, &UploadFile::width_), offsetof(Mirror, width));
  EXPECT_EQ(OffsetIn(file, &UploadFile::height_), offsetof(Mirror, height));
  EXPECT_EQ(OffsetIn(file, &UploadFile::file_path_), offsetof(Mirror, file_path));
  EXPECT_EQ(OffsetIn(file, &UploadFile::opaque_value_), offsetof(Mirror, opaque));
  EXPECT_EQ(OffsetIn(file, &UploadFile::zipped_file_path_), offsetof(Mirror, zipped_file_path));
  EXPECT_EQ(sizeof(file), sizeof(Mirror));
}

TEST_F(ContentLayoutTest, AFreshUploadFileIsEmpty) {
  const OnNoise<UploadFile> fresh;
  const UploadFile& file = *fresh;
  for (const ovrant_ustring* text : {&file.upload_url_, &file.type_, &file.name_, &file.format_,
                                     &file.file_path_, &file.zipped_file_path_}) {
    EXPECT_TRUE(text->empty());
  }
  EXPECT_FALSE(file.zipped_);
  EXPECT_EQ(file.width_, 0);
  EXPECT_EQ(file.height_, 0);
  EXPECT_EQ(file.opaque_value_, 0U);
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

STOWRA_ANY_FUNCTION_TYPE void CallSlot(void* object, int slot) {
  void* const* table;
  std::memcpy(&table, object, sizeof(table));
  reinterpret_cast<void (*)(void*)>(table[slot])(object);
}

TEST_F(ContentLayoutTest, AnUploadFileHasItsTwoDestructorsAndNoOtherVirtualFunction) {
  alignas(RecordingFile) unsigned char place[sizeof(RecordingFile)];
  auto* const file = new (place) RecordingFile;
  EXPECT_EQ(static_cast<void*>(static_cast<UploadFile*>(file)), file);
  CallSlot(file, 2);
  EXPECT_THAT(TakeEffects(), ElementsAre("first own function"));
  CallSlot(file, 0);
  EXPECT_THAT(TakeEffects(), ElementsAre("destroyed"));
  CallSlot(new RecordingFile, 1);
  EXPECT_THAT(TakeEffects(), ElementsAre("destroyed", "freed"));
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
