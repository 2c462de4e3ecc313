// SPDX-License-Identifier: MIT
// A second, plain way to read a document: a tree that is built first and written as XML then.

#ifndef TESTS_PLATFORM_XML_MODEL_H_
#define TESTS_PLATFORM_XML_MODEL_H_

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace stowra_test {

struct ModelElement {
  std::string uri;
  std::string local_name;
  ModelElement* parent = nullptr;
  std::size_t index = 0;  // Among the parent's children.
  std::map<std::string, std::string> attributes;
  std::vector<std::unique_ptr<ModelElement>> children;
  std::vector<std::string> texts;  // Before, between and after the children: one more than those.

  std::string Name() const { return uri.empty() ? local_name : uri + ":" + local_name; }
};

// The reader's operations on such a tree, by looking at every child in turn. REQUIRES: the document
// outlives it; its only child is the root.
class Model {
 public:
  explicit Model(const ModelElement* document) : current_(document) {}

  bool Find(const std::string& name);
  bool Next(const std::string& name);
  bool Leave(const std::string& name);
  std::optional<std::string> Attribute(const std::string& name) const;
  std::optional<std::string> Text(const std::string& name) const;
  std::optional<int> Int(const std::string& name) const;
  std::optional<bool> Bool(const std::string& name) const;

  const ModelElement& current() const { return *current_; }

 private:
  const ModelElement* Child(const std::string& name, std::size_t first) const;

  const ModelElement* current_;
};

// A tree and the document written from it. Both depend on the numbers from `random` alone.
struct RandomDocument {
  explicit RandomDocument(std::mt19937* random);

  std::unique_ptr<ModelElement> document;
  std::string bytes;
};

// One of `count` numbers from 0.
inline std::size_t Pick(std::mt19937* random, std::size_t count) { return (*random)() % count; }

// A name that elements of random documents often have.
std::string RandomElementName(std::mt19937* random);

// A name that attributes of random documents often have.
std::string RandomAttributeName(std::mt19937* random);

}  // namespace stowra_test

#endif  // TESTS_PLATFORM_XML_MODEL_H_
