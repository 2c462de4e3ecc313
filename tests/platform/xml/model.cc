// SPDX-License-Identifier: MIT
#include "tests/platform/xml/model.h"

#include <regex>
#include <utility>

#include "tests/support/text.h"

namespace stowra_test {
namespace {

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

template <typename T, std::size_t kCount>
const T& PickFrom(std::mt19937* random, const T (&items)[kCount]) {
  return items[Pick(random, kCount)];
}

std::string AllText(const ModelElement& element) {
  std::string text = element.texts[0];
  for (std::size_t i = 0; i < element.children.size(); ++i) {
    text += AllText(*element.children[i]) + element.texts[i + 1];
  }
  return text;
}

// Writes a random tree while it makes it.
class Writer {
 public:
  // The namespaces that hold at some place.
  struct Scope {
    std::string default_uri;
    std::optional<std::string> p;
    std::optional<std::string> q;
  };

  Writer(std::mt19937* random, std::string* bytes) : random_(random), bytes_(bytes) {}

  void WriteElement(ModelElement* element, Scope scope, std::size_t level) {
    element->uri = PickFrom(random_, kUris);
    element->local_name = PickFrom(random_, kLocalNames);
    std::string declarations;
    const std::string name = Prefix(element->uri, &scope, &declarations) + element->local_name;
    *bytes_ += "<" + name + declarations;
    WriteAttributes(element, scope);
    const bool has_content = Pick(random_, 5) != 0;
    *bytes_ += has_content ? ">" : "/>";
    element->texts.emplace_back();
    if (!has_content) return;
    WriteText(element);
    WriteChildren(element, scope, level);
    *bytes_ += "</" + name + " >";
  }

 private:
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

  void WriteAttributes(ModelElement* element, const Scope& scope) {
    for (const char* const name : kAttributeNames) {
      if (Pick(random_, 3) == 0) {
        const Spelling& value = PickFrom(random_, kValues);
        element->attributes[name] = value.meant;
        *bytes_ += std::string(" ") + name + "='" + value.written + "'";
      }
      if (scope.p && Pick(random_, 6) == 0) {
        *bytes_ += std::string(" p:") + name + " = 'prefixed'";
      }
    }
  }

  void WriteChildren(ModelElement* element, const Scope& scope, std::size_t level) {
    const std::size_t count = level < kMaxLevels ? Pick(random_, 6) : 0;
    for (std::size_t i = 0; i < count; ++i) {
      auto child = std::make_unique<ModelElement>();
      child->parent = element;
      child->index = i;
      WriteElement(child.get(), scope, level + 1);
      element->children.push_back(std::move(child));
      element->texts.emplace_back();
      WriteText(element);
    }
  }

  void WriteText(ModelElement* element) {
    for (std::size_t pieces = Pick(random_, 4); pieces > 0; --pieces) {
      const char* const plain = PickFrom(random_, kTexts);
      const bool is_plain = Pick(random_, 3) != 0;
      const Spelling text = is_plain ? Spelling{plain, plain} : PickFrom(random_, kOtherTexts);
      element->texts.back() += text.meant;
      *bytes_ += text.written;
    }
  }

  std::mt19937* random_;
  std::string* bytes_;
};

}  // namespace

const ModelElement* Model::Child(const std::string& name, std::size_t first) const {
  for (std::size_t i = first; i < current_->children.size(); ++i) {
    if (current_->children[i]->Name() == name) return current_->children[i].get();
  }
  return nullptr;
}

bool Model::Find(const std::string& name) {
  const ModelElement* const child = Child(name, 0);
  if (child != nullptr) current_ = child;
  return child != nullptr;
}

bool Model::Next(const std::string& name) {
  if (current_->parent == nullptr) return false;
  const ModelElement* const before = std::exchange(current_, current_->parent);
  const ModelElement* const sibling = Child(name, before->index + 1);
  current_ = sibling != nullptr ? sibling : before;
  return sibling != nullptr;
}

bool Model::Leave(const std::string& name) {
  if (current_->parent == nullptr || current_->Name() != name) return false;
  current_ = current_->parent;
  return true;
}

std::optional<std::string> Model::Attribute(const std::string& name) const {
  const auto found = current_->attributes.find(name);
  if (found == current_->attributes.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> Model::Text(const std::string& name) const {
  const ModelElement* const child = Child(name, 0);
  if (child == nullptr) return std::nullopt;
  return Trimmed(AllText(*child));
}

std::optional<int> Model::Int(const std::string& name) const {
  static const std::regex number("([+-]?)0*([0-9]{1,10})");
  const std::string text = Text(name).value_or("");
  std::smatch parts;
  if (!std::regex_match(text, parts, number)) return std::nullopt;
  const long long value = std::stoll(parts[1].str() + parts[2].str());
  if (value < -2147483648LL || value > 2147483647LL) return std::nullopt;
  return static_cast<int>(value);
}

std::optional<bool> Model::Bool(const std::string& name) const {
  const std::string text = Text(name).value_or("");
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  return std::nullopt;
}

RandomDocument::RandomDocument(std::mt19937* random) : document(std::make_unique<ModelElement>()) {
  bytes = kDeclarations;
  auto root = std::make_unique<ModelElement>();
  root->parent = document.get();
  Writer(random, &bytes).WriteElement(root.get(), Writer::Scope(), 1);
  document->children.push_back(std::move(root));
}

std::string RandomElementName(std::mt19937* random) {
  const std::string uri = PickFrom(random, kUris);
  const std::string local_name = PickFrom(random, kLocalNames);
  return uri.empty() ? local_name : uri + ":" + local_name;
}

std::string RandomAttributeName(std::mt19937* random) {
  // "other" is never written.
  return Pick(random, 8) == 0 ? "other" : PickFrom(random, kAttributeNames);
}

}  // namespace stowra_test
