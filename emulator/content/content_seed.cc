// SPDX-License-Identifier: MIT
#include "emulator/content/content_seed.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "emulator/content/item.h"
#include "emulator/content/rendition_type.h"
#include "emulator/content/subject.h"
#include "emulator/random_stream.h"

namespace stowra_emulator {
namespace {

constexpr int kFirstModel = 1001;

constexpr std::array kAuthors = {"u-1001", "u-1002", "u-1003", "u-1004"};

struct Collection {
  const char* title;
  const char* summary;
  std::vector<std::string> shapes;  // Of the models in it.
};

const std::vector<Collection>& Collections() {
  static const std::vector<Collection> collections = {
      {"Kitchen & Dining", "Tables, and chairs to go with them.", {"chair", "table"}},
      {"Living Room", "To sit, to read, to put things on.", {"sofa", "shelf", "lamp"}},
      {"Schlafzimmer für Gäste", "Betten und Lampen.", {"bed", "lamp"}},
      {"Ville nouvelle", "Des maisons, des tours.", {"house", "tower"}},
      {"街の風景", "車と木。", {"car", "tree"}},
      {"Everything 🌳 green", "Trees for every garden.", {"tree"}},
  };
  return collections;
}

// Models take these sets in turn. Some have no old version, some have no kmz, one has only a kmz.
const std::vector<std::vector<std::string>>& RenditionSets() {
  static const std::vector<std::vector<std::string>> sets = {
      {"k2", "s", "s6", "s7", "s8", "z"},
      {"s8", "s7", "k2"},
      {"s", "z"},
      {"k2"},
      {"k2", "s12", "s9"},
      {"z", "s6", "s13", "k2"},
      {"s3", "s4", "s"},
  };
  return sets;
}

const char* TypeOfRendition(const std::string& rtyp) {
  if (rtyp == "k2") return kKmzType;
  return rtyp == "z" ? kZipType : kQmfType;
}

std::string DayOf(int number) {
  constexpr int kDaysInEveryMonth = 28;
  const auto two_digits = [](int value) { return std::to_string(100 + value).substr(1); };
  return "2024-" + two_digits(1 + number / kDaysInEveryMonth % 12) + "-" +
         two_digits(1 + number % kDaysInEveryMonth) + "T09:00:00Z";
}

std::string SummaryOf(const std::string& title, const std::string& mid) {
  RandomStream random(mid);
  std::string sizes;
  for (const char* mark : {" × ", " × ", " cm"}) {
    sizes += std::to_string(40 + 5 * random.Pick(60)) + mark;
  }
  return title + ", drawn to scale: " + sizes + ".";
}

void AddItem(Database& database, int id, const Item& item, const std::string& keywords) {
  Statement row = database.Prepare(
      "INSERT INTO items (id, mid, kind, title, summary, keywords, author, updated, shape, "
      "dynamic_component, classified_component) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  row.BindInt(1, id).Bind(2, item.mid).Bind(3, item.is_collection ? "collection" : "model");
  row.Bind(4, item.title).Bind(5, item.summary).Bind(6, keywords).Bind(7, item.author);
  row.Bind(8, item.updated).Bind(9, item.shape);
  row.BindInt(10, item.dynamic_component ? 1 : 0).BindInt(11, item.classified_component ? 1 : 0);
  row.Step();
}

void AddRenditions(Database& database, const std::string& mid,
                   const std::vector<std::string>& rtyps) {
  for (const std::string& rtyp : rtyps) {
    Statement row = database.Prepare("INSERT INTO renditions (mid, rtyp, type) VALUES (?, ?, ?)");
    row.Bind(1, mid).Bind(2, rtyp).Bind(3, TypeOfRendition(rtyp)).Step();
  }
}

void AddModel(Database& database, int number, const Subject& subject, const std::string& title) {
  const auto index = static_cast<std::size_t>(number);
  Item model;
  model.mid = "m-" + std::to_string(kFirstModel + number);
  model.title = title;
  model.summary = SummaryOf(title, model.mid);
  model.author = kAuthors[index % kAuthors.size()];
  model.updated = DayOf(number);
  model.shape = subject.shape;
  model.dynamic_component = number % 3 == 0;
  model.classified_component = number % 4 == 0;
  AddItem(database, kFirstModel + number, model, subject.keywords);
  AddRenditions(database, model.mid, RenditionSets()[index % RenditionSets().size()]);
}

void AddCollection(Database& database, int number, const Collection& collection) {
  Item item;
  item.mid = "c-" + std::to_string(number);
  item.is_collection = true;
  item.title = collection.title;
  item.summary = collection.summary;
  item.author = kAuthors[static_cast<std::size_t>(number) % kAuthors.size()];
  item.updated = DayOf(300 + number);
  item.shape = collection.shapes.front();
  AddItem(database, number, item, "collection");
  for (const std::string& shape : collection.shapes) {
    Statement members = database.Prepare(
        "INSERT INTO collection_models SELECT ?, mid FROM items "
        "WHERE kind = 'model' AND shape = ?");
    members.Bind(1, item.mid).Bind(2, shape).Step();
  }
}

}  // namespace

void SeedContent(Database& database) {
  // Takes one title of each subject in turn, so that a page shows many subjects.
  int model = 0;
  for (std::size_t title = 0; title < kTitlesOfSubject; ++title) {
    for (const Subject& subject : Subjects()) {
      AddModel(database, model, subject, subject.titles[title]);
      ++model;
    }
  }
  int number = 0;
  for (const Collection& collection : Collections()) {
    ++number;
    AddCollection(database, number, collection);
  }
}

}  // namespace stowra_emulator
