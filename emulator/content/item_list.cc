// SPDX-License-Identifier: MIT
#include "emulator/content/item_list.h"

#include <string>

#include "emulator/content/item_address.h"
#include "emulator/content/picture_size.h"

namespace stowra_emulator {
namespace {

void WriteItem(MarkupWriter& page, const Item& item, const char* heading) {
  const PictureSize& size = PictureSizes().front();
  page.Begin("li");
  page.Begin("a", {{"href", PageAddress("", item)}});
  page.Empty("img", {{"src", ThumbnailAddress("", item.mid, size.rtyp)},
                     {"alt", "Picture of " + item.title},
                     {"width", std::to_string(size.width)},
                     {"height", std::to_string(size.height)}});
  page.Element(heading, item.title, {{"dir", "auto"}});
  page.End();
  page.Begin("p", {{"class", "soft"}});
  page.Text(item.is_collection ? "Collection by " : "Model by ");
  page.Element("a", item.author_name, {{"href", AuthorPageAddress("", item.author)}});
  page.End();
  page.End();
}

}  // namespace

void WriteItemList(MarkupWriter& page, const std::vector<Item>& items, const char* heading) {
  page.Begin("ul", {{"class", "results"}});
  for (const Item& item : items) WriteItem(page, item, heading);
  page.End();
}

}  // namespace stowra_emulator
