// SPDX-License-Identifier: MIT
// What the content service offers.

#ifndef EMULATOR_CONTENT_ITEM_H_
#define EMULATOR_CONTENT_ITEM_H_

#include <string>
#include <vector>

namespace stowra_emulator {

// A form in which a model can be downloaded.
struct Rendition {
  std::string rtyp;  // Its name: "s8", "s", "k2", "z", "o".
  std::string type;  // Content type.
};

// A model or a collection of models.
struct Item {
  std::string mid;
  bool is_collection = false;
  std::string title;
  std::string summary;
  std::string author;       // The uid of a user.
  std::string author_name;  // The uid if the user has no name or is gone.
  std::string updated;      // Such as 2024-01-31T09:00:00Z.
  std::string shape;        // What its picture shows; if empty, the mid decides.
  bool dynamic_component = false;
  bool classified_component = false;
  std::vector<Rendition> renditions;  // Empty for a collection.
};

}  // namespace stowra_emulator

#endif  // EMULATOR_CONTENT_ITEM_H_
