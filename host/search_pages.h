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

// Successive pages of one search, which own the results. For one thread at a time.
class SearchPages {
 public:
  // `session` must outlive the pages.
  SearchPages(const Session& session, int max_qmf_version)
      : session_(session), max_qmf_version_(max_qmf_version) {}

  // Adds the page at `url`. False when that fails: Fail says why.
  bool Add(const ovrant::utils::ovrant_ustring& url);

  // Adds the pages to which the last one leads, one after the other, up to one that fails: then
  // false. Stops, with a warning, at an address that has been asked already, and after a hundred
  // pages on end without a result that is new: a server may go on forever.
  bool AddFollowing();

  // Says on stderr why the last page was not added.
  ExitStatus Fail() const;

  // REQUIRES: Add has returned true.
  const ovrant::stowraapiclient::ContentQuery& first() const { return *pages_.front(); }
  const ovrant::stowraapiclient::ContentQuery& last() const { return *pages_.back(); }

  // Those of the first page, and of each one after it those that no page before has, in order.
  const std::vector<const ovrant::stowraapiclient::ContentItem*>& items() const { return items_; }

  // As "results 1 to 12 of 100", and how many of them there are here if the pages say otherwise; as
  // "none here of 100" where the pages begin after the last one.
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
