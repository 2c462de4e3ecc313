// SPDX-License-Identifier: MIT
// The parts that all web pages share.

#ifndef EMULATOR_PAGE_PAGE_H_
#define EMULATOR_PAGE_PAGE_H_

#include <httplib.h>

#include <string>

#include "emulator/markup_writer.h"

namespace stowra_emulator {

struct PageHead {
  std::string title;
  std::string search_text;   // Shown in the search box.
  std::string feed_address;  // Of a feed with the same results; empty without one.
};

// Begins a page. Its contents go into the element that is left open.
MarkupWriter BeginPage(const PageHead& head);

// Finishes the page and sets it as the answer.
void SetPage(httplib::Response& response, MarkupWriter& page);

// True for a browser that shows the answer to a person.
bool WantsPage(const httplib::Request& request);

}  // namespace stowra_emulator

#endif  // EMULATOR_PAGE_PAGE_H_
