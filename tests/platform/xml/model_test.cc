// SPDX-License-Identifier: MIT
// Random walks through random documents, beside a plain model of the reader.

#include "tests/platform/xml/model.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

constexpr unsigned int kDocuments = 4000;
constexpr int kSteps = 200;

// How often operations gave something, to see that the walks get about.
struct Successes {
  int found = 0;
  int next = 0;
  int left = 0;
  int attributes = 0;
  int texts = 0;
  int numbers = 0;
  int flags = 0;
};

// The name of the current element, of a child or of a sibling, or any name.
std::string NameNear(const ModelElement& current, std::mt19937* random) {
  std::vector<std::string> names = {current.Name(), RandomElementName(random)};
  for (const auto& child : current.children) names.push_back(child->Name());
  if (current.parent != nullptr) {
    for (const auto& sibling : current.parent->children) names.push_back(sibling->Name());
  }
  return names[Pick(random, names.size())];
}

template <typename Value>
bool Agree(const Value& real, const Value& model) {
  EXPECT_EQ(real, model);
  return static_cast<bool>(model);
}

// One random operation on both, which must agree.
void TakeStep(std::mt19937* random, XmlDocument* document, Model* model, Successes* successes) {
  const std::string name = NameNear(model->current(), random);
  const std::string attribute = RandomAttributeName(random);
  const std::size_t operation = Pick(random, 10);
  SCOPED_TRACE(std::to_string(operation) + " " + name + " " + attribute);
  switch (operation) {
    case 0:
    case 1:
    case 2:
      successes->found += Agree(document->Find(name), model->Find(name)) ? 1 : 0;
      break;
    case 3:
    case 4:
      successes->next += Agree(document->Next(name), model->Next(name)) ? 1 : 0;
      break;
    case 5:
      successes->left += Agree(document->Leave(name), model->Leave(name)) ? 1 : 0;
      break;
    case 6:
      successes->attributes +=
          Agree(document->Attribute(attribute), model->Attribute(attribute)) ? 1 : 0;
      break;
    case 7:
      successes->texts += Agree(document->Text(name), model->Text(name)) ? 1 : 0;
      break;
    case 8:
      successes->numbers += Agree(document->Int(name), model->Int(name)) ? 1 : 0;
      break;
    default:
      successes->flags += Agree(document->Bool(name), model->Bool(name)) ? 1 : 0;
  }
}

TEST(XmlModelTest, ReaderAndModelAgreeOnEveryStep) {
  Successes successes;
  for (unsigned int seed = 1; seed <= kDocuments; ++seed) {
    std::mt19937 random(seed);
    const RandomDocument tree(&random);
    XmlDocument document(tree.bytes);
    ASSERT_TRUE(document.is_open()) << "seed " << seed << "\n" << tree.bytes;
    Model model(tree.document.get());
    ASSERT_TRUE(document.Find(tree.document->children[0]->Name()));
    ASSERT_TRUE(model.Find(tree.document->children[0]->Name()));
    for (int step = 0; step < kSteps; ++step) TakeStep(&random, &document, &model, &successes);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << tree.bytes;
  }
  EXPECT_GT(successes.found, 1000);
  EXPECT_GT(successes.next, 1000);
  EXPECT_GT(successes.left, 1000);
  EXPECT_GT(successes.attributes, 1000);
  EXPECT_GT(successes.texts, 1000);
  EXPECT_GT(successes.numbers, 100);
  EXPECT_GT(successes.flags, 100);
}

// Every element of a tree in the order of the document, each reached by the usual pattern for the
// name it has.
void VisitChildren(const ModelElement& element, XmlDocument* document, int* visited) {
  for (const auto& child : element.children) {
    ASSERT_TRUE(document->Find(child->Name()));
    for (std::size_t i = 0; i < child->index; ++i) {
      if (element.children[i]->Name() != child->Name()) continue;
      ASSERT_TRUE(document->Next(child->Name()));
    }
    ++*visited;
    for (const auto& [name, value] : child->attributes) {
      EXPECT_EQ(document->Attribute(name), value);
    }
    VisitChildren(*child, document, visited);
    ASSERT_TRUE(document->Leave(child->Name()));
  }
}

TEST(XmlModelTest, EveryElementIsReachedWithItsAttributes) {
  int visited = 0;
  for (unsigned int seed = 1; seed <= kDocuments; ++seed) {
    std::mt19937 random(seed);
    const RandomDocument tree(&random);
    XmlDocument document(tree.bytes);
    ASSERT_TRUE(document.is_open());
    VisitChildren(*tree.document, &document, &visited);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << tree.bytes;
  }
  EXPECT_GT(visited, 10'000);
}

}  // namespace
}  // namespace stowra_test
