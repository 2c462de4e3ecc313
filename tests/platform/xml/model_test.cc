// SPDX-License-Identifier: MIT
// Random walks through random documents, beside the fuzz targets' plain nodes. The nodes are made
// first and written as XML then.

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "fuzz/platform/xml/tree.h"
#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

using stowra_fuzz::XmlNode;

constexpr unsigned int kDocuments = 4000;
constexpr int kSteps = 200;
constexpr std::size_t kMaxLevels = 6;

const char* const kUris[] = {"", "urn:1", "http://host/x?y#z", "\xC3\xA9"};
const char* const kLocalNames[] = {"a", "b", "A", "a-b", "\xC3\xA9l"};
const char* const kAttributeNames[] = {"n", "m", "N", "n.1", "\xC3\xA9"};

// What a document says and what that means: in texts, most of which mean themselves, and in
// attribute values.
struct Spelling {
  const char* written;
  const char* meant;
};

const char* const kTexts[] = {"",  " ",          "\t\n",       "x",           "word ", "12",
                              "-", "2147483647", "2147483648", "true",        "false", "0",
                              "1", "\"'",        "\xC2\xA0",   "\xE2\x82\xAC"};

const Spelling kOtherTexts[] = {{"\r\n", "\n"},
                                {"&#13;", "\r"},
                                {"&lt;&amp;&gt;", "<&>"},
                                {"&#x1F600;", "\xF0\x9F\x98\x80"},
                                {"<![CDATA[ <a>&amp; ]]>", " <a>&amp; "},
                                {"<![CDATA[]]>", ""},
                                {"<!-- <a> -->", ""},
                                {"<?a b?>", ""}};

const Spelling kValues[] = {{"", ""},
                            {"x", "x"},
                            {" 1 ", " 1 "},
                            {"\t", " "},
                            {"&#10;", "\n"},
                            {"&lt;&amp;&quot;&apos;>", "<&\"'>"},
                            {"\xC3\xA9&#233;", "\xC3\xA9\xC3\xA9"}};

constexpr char kDeclarations[] = "<!DOCTYPE a SYSTEM 'nowhere' [<!ELEMENT a ANY>]>";

// One of `count` numbers from 0.
std::size_t Pick(std::mt19937* random, std::size_t count) { return (*random)() % count; }

template <typename T, std::size_t kCount>
const T& PickFrom(std::mt19937* random, const T (&items)[kCount]) {
  return items[Pick(random, kCount)];
}

std::string NameOf(const std::string& uri, const std::string& local_name) {
  return uri.empty() ? local_name : uri + ":" + local_name;
}

// A random tree and the document written from it. Both depend on the numbers from `random` alone.
class RandomDocument {
 public:
  explicit RandomDocument(std::mt19937* random) : random_(random) {
    nodes_.push_back(std::make_unique<XmlNode>());
    WriteElement(nodes_[0].get(), Scope(), 1);
  }

  const XmlNode& document() const { return *nodes_[0]; }
  const XmlNode& root() const { return *nodes_[1]; }
  const std::string& bytes() const { return bytes_; }

 private:
  // The namespaces that hold at some place.
  struct Scope {
    std::string default_uri;
    std::optional<std::string> p;
    std::optional<std::string> q;
  };

  XmlNode* AddChild(XmlNode* parent) {
    nodes_.push_back(std::make_unique<XmlNode>());
    XmlNode* const node = nodes_.back().get();
    node->parent = parent;
    node->index = parent->children.size();
    parent->children.push_back(node);
    return node;
  }

  void WriteElement(XmlNode* parent, Scope scope, std::size_t level) {
    XmlNode* const node = AddChild(parent);
    const std::string uri = PickFrom(random_, kUris);
    const std::string local_name = PickFrom(random_, kLocalNames);
    node->name = NameOf(uri, local_name);
    std::string declarations;
    const std::string name = Prefix(uri, &scope, &declarations) + local_name;
    bytes_ += "<" + name + declarations;
    WriteAttributes(node, scope);
    if (Pick(random_, 5) == 0) {
      bytes_ += "/>";
      return;
    }
    bytes_ += ">";
    WriteText(node);
    const std::size_t count = level < kMaxLevels ? Pick(random_, 6) : 0;
    for (std::size_t i = 0; i < count; ++i) {
      WriteElement(node, scope, level + 1);
      WriteText(node);
    }
    bytes_ += "</" + name + " >";
  }

  // The prefix for an element in `uri`, declared here unless it is already.
  std::string Prefix(const std::string& uri, Scope* scope, std::string* declarations) {
    if (uri.empty() || Pick(random_, 2) == 0) {
      if (scope->default_uri != uri || Pick(random_, 4) == 0) {
        *declarations += " xmlns='" + uri + "'";
        scope->default_uri = uri;
      }
      return "";
    }
    const bool use_p = Pick(random_, 2) == 0;
    std::optional<std::string>& bound = use_p ? scope->p : scope->q;
    const std::string prefix = use_p ? "p" : "q";
    if (bound != uri) {
      bound = uri;
      *declarations += " xmlns:" + prefix + "=\"" + uri + "\"";
    }
    return prefix + ":";
  }

  void WriteAttributes(XmlNode* node, const Scope& scope) {
    for (const char* const name : kAttributeNames) {
      if (Pick(random_, 3) == 0) {
        const Spelling& value = PickFrom(random_, kValues);
        node->attributes[name] = value.meant;
        bytes_ += std::string(" ") + name + "='" + value.written + "'";
      }
      if (scope.p && Pick(random_, 6) == 0) {
        bytes_ += std::string(" p:") + name + " = 'prefixed'";
      }
    }
  }

  void WriteText(XmlNode* node) {
    for (std::size_t pieces = Pick(random_, 4); pieces > 0; --pieces) {
      const char* const plain = PickFrom(random_, kTexts);
      const bool is_plain = Pick(random_, 3) != 0;
      const Spelling text = is_plain ? Spelling{plain, plain} : PickFrom(random_, kOtherTexts);
      for (XmlNode* each = node; each != nullptr; each = each->parent) each->text += text.meant;
      bytes_ += text.written;
    }
  }

  std::mt19937* const random_;
  std::vector<std::unique_ptr<XmlNode>> nodes_;  // in document order
  std::string bytes_ = kDeclarations;
};

// How often each operation gave something, to see that the walks get about.
using Successes = std::map<std::string, int>;

// The name of the current element, of a child or of a sibling, or any name.
std::string NameNear(const XmlNode& current, std::mt19937* random) {
  const char* const uri = PickFrom(random, kUris);
  std::vector<std::string> names = {current.name, NameOf(uri, PickFrom(random, kLocalNames))};
  for (const XmlNode* child : current.children) names.push_back(child->name);
  if (current.parent != nullptr) {
    for (const XmlNode* sibling : current.parent->children) names.push_back(sibling->name);
  }
  return names[Pick(random, names.size())];
}

// Moves there if it exists.
bool Move(const XmlNode* target, const XmlNode** current) {
  if (target != nullptr) *current = target;
  return target != nullptr;
}

// One random operation on both, which must agree. "other" is no attribute's name.
void TakeStep(std::mt19937* random, XmlDocument* document, const XmlNode** current,
              Successes* successes) {
  const XmlNode& node = **current;
  const std::string name = NameNear(node, random);
  const std::string attribute = Pick(random, 8) == 0 ? "other" : PickFrom(random, kAttributeNames);
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
      return agree("Find", document->Find(name), Move(node.Child(name), current));
    case 3:
    case 4:
      return agree("Next", document->Next(name), Move(node.NextSibling(name), current));
    case 5:
      return agree("Leave", document->Leave(name),
                   Move(node.name == name ? node.parent : nullptr, current));
    case 6:
      return agree("Attribute", document->Attribute(attribute), node.Attribute(attribute));
    case 7:
      return agree("Text", document->Text(name), node.ChildText(name));
    case 8:
      return agree("Int", document->Int(name), node.ChildInt(name));
    default:
      agree("Bool", document->Bool(name), node.ChildBool(name));
  }
}

TEST(XmlModelTest, ReaderAndModelAgreeOnEveryStep) {
  Successes successes;
  for (unsigned int seed = 1; seed <= kDocuments; ++seed) {
    std::mt19937 random(seed);
    const RandomDocument tree(&random);
    OpenDocument document(tree.bytes(), tree.root().name);
    const XmlNode* current = &tree.root();
    for (int step = 0; step < kSteps; ++step) TakeStep(&random, &document, &current, &successes);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << tree.bytes();
  }
  for (const char* const what : {"Find", "Next", "Leave", "Attribute", "Text"}) {
    EXPECT_GT(successes[what], 1000) << what;
  }
  for (const char* const what : {"Int", "Bool"}) EXPECT_GT(successes[what], 100) << what;
}

// Every element of a tree in the order of the document, each reached by the usual pattern for the
// name it has.
void VisitChildren(const XmlNode& element, XmlDocument* document, int* visited) {
  for (const XmlNode* child : element.children) {
    ASSERT_TRUE(document->Find(child->name));
    for (std::size_t i = 0; i < child->index; ++i) {
      if (element.children[i]->name != child->name) continue;
      ASSERT_TRUE(document->Next(child->name));
    }
    ++*visited;
    for (const auto& [name, value] : child->attributes) EXPECT_EQ(document->Attribute(name), value);
    VisitChildren(*child, document, visited);
    ASSERT_TRUE(document->Leave(child->name));
  }
}

TEST(XmlModelTest, EveryElementIsReachedWithItsAttributes) {
  int visited = 0;
  for (unsigned int seed = 1; seed <= kDocuments; ++seed) {
    std::mt19937 random(seed);
    const RandomDocument tree(&random);
    OpenDocument document(tree.bytes());
    VisitChildren(tree.document(), &document, &visited);
    ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << tree.bytes();
  }
  EXPECT_GT(visited, 10'000);
}

}  // namespace
}  // namespace stowra_test
