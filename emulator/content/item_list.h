// SPDX-License-Identifier: MIT
// Items with their pictures on a web page.

#ifndef EMULATOR_CONTENT_ITEM_LIST_H_
#define EMULATOR_CONTENT_ITEM_LIST_H_

#include <vector>

#include "emulator/content/item.h"
#include "emulator/markup_writer.h"

namespace stowra_emulator {

// `heading` is the element for the titles: "h2" or "h3".
void WriteItemList(MarkupWriter& page, const std::vector<Item>& items, const char* heading);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_ITEM_LIST_H_
