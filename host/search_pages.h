// SPDX-License-Identifier: MIT
// Search results, page by page.

#ifndef HOST_SEARCH_PAGES_H_
#define HOST_SEARCH_PAGES_H_

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common_stowraapi/content/content_query.h"
#include "common_stowraapi/platform/ustring.h"
#include "host/exit_status.h"
#include "host/session.h"

namespace stowra {

// Successive pages of one search. They own the results. For one thread at a time.
class SearchPages {
 public:
  // `session` must outlive the pages.
  SearchPages(const Session& session, int max_qmf_version)
      : session_(session), max_qmf_version_(max_qmf_version) {}

  // Adds the page at `url`. Returns false if that fails. Fail then prints the reason.
  bool Add(const ovrant::utils::ovrant_ustring& url);

  // Follows the next links and adds their pages. Returns false at the first page that fails. Since
  // a server could link its pages forever, stops with a warning at a URL that was fetched before,
  // and after 100 pages in a row without a new result.
  bool AddFollowing();

  // Prints to stderr why the last page was not added.
  ExitStatus Fail() const;

  // REQUIRES: Add has returned true.
  const ovrant::stowraapiclient::ContentQuery& first() const { return *pages_.front(); }
  const ovrant::stowraapiclient::ContentQuery& last() const { return *pages_.back(); }

  // All results of the first page, then those of the later pages whose ids are new.
  const std::vector<const ovrant::stowraapiclient::ContentItem*>& items() const { return items_; }

  // Such as "results 1 to 12 of 100". If only 8 of those could be used, adds "usable 8". If the
  // first page begins after the last result, "none here of 100".
  std::string CountText() const;

 private:
  void TakeItems(const ovrant::stowraapiclient::ContentQuery& page);

  const Session& session_;
  const int max_qmf_version_;
  std::vector<std::unique_ptr<ovrant::stowraapiclient::ContentQuery>> pages_;
  std::vector<const ovrant::stowraapiclient::ContentItem*> items_;
  std::set<ovrant::utils::ovrant_ustring> urls_;
  std::set<ovrant::utils::ovrant_ustring> ids_;
};

}  // namespace stowra

#endif  // HOST_SEARCH_PAGES_H_
