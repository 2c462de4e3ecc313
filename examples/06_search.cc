// SPDX-License-Identifier: MIT
// Searches in the background, fetches the pictures of each page, and cancels a search.
//
// Run:
//   stowra-emulator --port 8080
//   06_search http://127.0.0.1:8080
//
// Prints:
//   Oak Chair and 4 more of 11, with 5 pictures
//   木の椅子 and 4 more of 11, with 5 pictures
//   Стул со спинкой and 0 more of 11, with 1 pictures
//   cancelled a search

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "common_stowraapi/common_stowraapi.h"
#include "download.h"
#include "main_queue.h"

using ovrant::internet::InternetData;
using ovrant::stowraapiclient::ContentQuery;

static bool LoadPage(const std::string& url, MainQueue& queue, ContentQuery& page) {
  bool done = false;
  bool loaded = false;
  const Download feed(url.c_str(), [&](const InternetData* response) {
    loaded = response != nullptr && page.Load(response->received_data(),
                                              static_cast<int>(response->received_data_length()));
    done = true;
  });
  queue.RunUntil(done);
  return loaded;
}

static int CountLoadedPictures(const ContentQuery& page, MainQueue& queue) {
  std::size_t missing = page.items_.size();
  bool done = missing == 0;
  int loaded = 0;
  std::vector<std::unique_ptr<Download>> downloads;
  for (auto* const item : page.items_) {
    const auto take = [item, &missing, &done, &loaded](const InternetData* response) {
      if (response != nullptr) {
        const unsigned long size = response->received_data_length();
        auto* const bytes = new unsigned char[size];
        std::copy_n(response->received_data(), size, bytes);
        item->SetThumbnailBuffer(static_cast<int>(size), bytes);  // the item owns them now
        ++loaded;
      }
      done = --missing == 0;
    };
    downloads.push_back(std::make_unique<Download>(item->thumbnail_url_, take));
  }
  queue.RunUntil(done);
  return loaded;
}

int main(int argc, char** argv) {
  const std::string service = argc > 1 ? argv[1] : "http://127.0.0.1:8080";
  MainQueue queue;
  ContentQuery page;
  page.max_qmf_version_ = 8;  // the newest model file that this host opens
  std::string url = service + "/search?q=chair&count=5";
  for (bool more = true; more; more = page.NextValid(), url = page.next_url_.utf8()) {
    if (!LoadPage(url, queue, page) || !page.HasResults()) return 1;
    std::cout << page.items_.front()->title_ << " and " << page.items_.size() - 1 << " more of "
              << page.total_results_ << ", with " << CountLoadedPictures(page, queue)
              << " pictures\n";
  }
  {
    const Download slow((service + "/search?fault=stall:60").c_str(), [](const auto*) {});
  }
  std::cout << "cancelled a search\n";  // at once
}
