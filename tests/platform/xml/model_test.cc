// SPDX-License-Identifier: MIT
// Random walks through random documents, beside a plain model of the reader.

#include "tests/platform/xml/model.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

constexpr unsigned int kDocuments = 4000;
constexpr int kSteps = 200;

// How often each operation gave something, to see that the walks get about.
using Successes = std::map<std::string, int>;

// The name of the current element, of a child or of a sibling, or any name.
std::string NameNear(const ModelElement& current, std::mt19937* random) {
  std::vector<std::string> names = {current.Name(), RandomElementName(random)};
  for (const auto& child : current.children) names.push_back(child->Name());
  if (current.parent != nullptr) {
    for (const auto& sibling : current.parent->children) names.push_back(sibling->Name());
  }
  return names[Pick(random, names.size())];
}

// One random operation on both, which must agree.
void TakeStep(std::mt19937* random, XmlDocument* document, Model* model, Successes* successes) {
  const std::string name = NameNear(model->current(), random);
  const std::string attribute = RandomAttributeName(random);
  const std::size_t operation = Pick(random, 10);
  SCOPED_TRACE(std::to_string(operation) + " " + name + " " + attribute);
  const auto agree = [&](const char* what, const auto& real, const auto& expected) {
    EXPECT_EQ(real, expected);
    if (expected) ++(*successes)[what];
  };
  switch (operation) {
    case 0:
    case 1:
    case 2:
      return agree("Find", document->Find(name), model->Find(name));
    case 3:
    case 4:
      return agree("Next", document->Next(name), model->Next(name));
    case 5:
      return agree("Leave", document->Leave(name), model->Leave(name));
    case 6:
      return agree("Attribute", document->Attribute(attribute), model->Attribute(attribute));
    case 7:
      return agree("Text", document->Text(name), model->Text(name));
    case 8:
      return agree("Int", document->Int(name), model->Int(name));
    default:
      agree("Bool", document->Bool(name), model->Bool(name));
  }
}

TEST(XmlModelTest, ReaderAndModelAgreeOnEveryStep) {
  Successes successes;
  for (unsigned int seed = 1; seed <= kDocuments; ++seed) {
    std::mt19937 random(seed);
    const RandomDocument tree(&random);
    const std::string root = tree.document->children[0]->Name();
    OpenDocument document(tree.bytes, root);
    Model model(tree.document.get());
    ASSERT_TRUE(model.Find(root));
    for (int step = 0; step < kSteps; ++step) TakeStep(&random, &document, &model, &successes);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << tree.bytes;
  }
  for (const char* const what : {"Find", "Next", "Leave", "Attribute", "Text"}) {
    EXPECT_GT(successes[what], 1000) << what;
  }
  for (const char* const what : {"Int", "Bool"}) EXPECT_GT(successes[what], 100) << what;
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
    for (const auto& [name, value] : child->attributes) EXPECT_EQ(document->Attribute(name), value);
    VisitChildren(*child, document, visited);
    ASSERT_TRUE(document->Leave(child->Name()));
  }
}

TEST(XmlModelTest, EveryElementIsReachedWithItsAttributes) {
  int visited = 0;
  for (unsigned int seed = 1; seed <= kDocuments; ++seed) {
    std::mt19937 random(seed);
    const RandomDocument tree(&random);
    OpenDocument document(tree.bytes);
    VisitChildren(*tree.document, &document, &visited);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << tree.bytes;
  }
  EXPECT_GT(visited, 10'000);
}

}  // namespace
}  // namespace stowra_test
