// What the web pages have in common.

#ifndef EMULATOR_CONTENT_PAGE_H_
#define EMULATOR_CONTENT_PAGE_H_

#include <httplib.h>

#include <string>

#include "emulator/markup_writer.h"

namespace stowra_emulator {

struct PageHead {
  std::string title;
  std::string search_text;   // What stands in the search box.
  std::string feed_address;  // Of a feed of the same contents; empty when there is none.
};

// A page up to where its contents come: they go into the element that is open.
MarkupWriter BeginPage(const PageHead& head);

// Ends the page and makes it the answer.
void SetPage(httplib::Response& response, MarkupWriter& page);

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_PAGE_H_
