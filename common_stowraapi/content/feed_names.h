// SPDX-License-Identifier: MIT
// The names and values that a search feed uses.

#ifndef COMMON_STOWRAAPI_CONTENT_FEED_NAMES_H_
#define COMMON_STOWRAAPI_CONTENT_FEED_NAMES_H_

#include "common_stowraapi/platform/ustring.h"

namespace ovrant::stowraapiclient {

// Names and values as ovrant::IXMLInput takes and gives them. Made once, since reading an entry
// needs dozens of them.
struct FeedNames {
  // Never destroyed: a thread may still use it while the process exits.
  static const FeedNames& Get();

  // Elements of Atom (RFC 4287).
  const ovrant::utils::ovrant_ustring feed;
  const ovrant::utils::ovrant_ustring entry;
  const ovrant::utils::ovrant_ustring id;
  const ovrant::utils::ovrant_ustring title;
  const ovrant::utils::ovrant_ustring summary;
  const ovrant::utils::ovrant_ustring category;
  const ovrant::utils::ovrant_ustring link;
  const ovrant::utils::ovrant_ustring content;
  const ovrant::utils::ovrant_ustring author;
  const ovrant::utils::ovrant_ustring author_name;
  const ovrant::utils::ovrant_ustring author_uri;

  // Elements of OpenSearch 1.0, the edition that extends RSS.
  const ovrant::utils::ovrant_ustring total_results;
  const ovrant::utils::ovrant_ustring start_index;
  const ovrant::utils::ovrant_ustring items_per_page;

  // Elements of Media RSS 1.5.1.
  const ovrant::utils::ovrant_ustring media_group;
  const ovrant::utils::ovrant_ustring media_thumbnail;
  const ovrant::utils::ovrant_ustring media_content;

  // Elements of the service's own schema.
  const ovrant::utils::ovrant_ustring dynamic_component;
  const ovrant::utils::ovrant_ustring classified_component;

  // Attributes.
  const ovrant::utils::ovrant_ustring rel;
  const ovrant::utils::ovrant_ustring href;
  const ovrant::utils::ovrant_ustring type;
  const ovrant::utils::ovrant_ustring term;
  const ovrant::utils::ovrant_ustring src;
  const ovrant::utils::ovrant_ustring url;

  // URL parameters and their values.
  const ovrant::utils::ovrant_ustring rendition;
  const ovrant::utils::ovrant_ustring k2_rendition;
  const ovrant::utils::ovrant_ustring small_thumbnail;
  const ovrant::utils::ovrant_ustring author_parameter;
  const ovrant::utils::ovrant_ustring parameter_end;

  // The category term of a model.
  const ovrant::utils::ovrant_ustring model;

  // Link relations.
  const ovrant::utils::ovrant_ustring self;
  const ovrant::utils::ovrant_ustring next;
  const ovrant::utils::ovrant_ustring previous;
  const ovrant::utils::ovrant_ustring alternate;
  const ovrant::utils::ovrant_ustring user_query;

  // Media types of link targets and renditions.
  const ovrant::utils::ovrant_ustring atom_type;
  const ovrant::utils::ovrant_ustring html_type;
  const ovrant::utils::ovrant_ustring qmf_type;
  const ovrant::utils::ovrant_ustring kmz_type;

 private:
  FeedNames();
};

}  // namespace ovrant::stowraapiclient

#endif  // COMMON_STOWRAAPI_CONTENT_FEED_NAMES_H_
