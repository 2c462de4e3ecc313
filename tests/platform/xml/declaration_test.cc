// SPDX-License-Identifier: MIT
// What a document type declaration may hold, and references to entities.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/xml/document.h"

namespace stowra_test {
namespace {

// All ways to begin a document whose root is `a`, around an internal subset.
std::vector<std::string> PrologsWith(const std::string& subset) {
  std::vector<std::string> prologs;
  for (const char* const declaration :
       {"", "<?xml version='1.0' standalone='yes'?>", "<?xml version='1.0' standalone='no'?>"}) {
    for (const char* const id : {"", "SYSTEM 'x.dtd'", "PUBLIC '-//X//Y' 'x.dtd'"}) {
      prologs.push_back(std::string(declaration) + "<!DOCTYPE a " + id + " [" + subset + "]>");
    }
  }
  return prologs;
}

bool OpensWith(const std::string& subset) {
  const std::vector<std::string> prologs = PrologsWith(subset);
  const bool opens = Opens(prologs[0] + "<a>x</a>");
  for (const std::string& prolog : prologs) EXPECT_EQ(Opens(prolog + "<a>x</a>"), opens) << prolog;
  return opens;
}

TEST(XmlDeclarationTest, EntitiesAreRefused) {
  for (const char* const declaration :
       {"<!ENTITY e 'x'>", "<!ENTITY e ''>", "<!ENTITY e SYSTEM 'x'>", "<!ENTITY e PUBLIC 'x' 'y'>",
        "<!NOTATION n SYSTEM 'x'><!ENTITY e SYSTEM 'x' NDATA n>", "<!ENTITY % p 'x'>",
        "<!ENTITY % p SYSTEM 'x'>", "<!ENTITY % p '<!ELEMENT a ANY>'> %p;",
        "<!ELEMENT a ANY><!-- c --><?p?><!ENTITY nbsp '&#160;'>"}) {
    EXPECT_FALSE(OpensWith(declaration)) << declaration;
  }
}

TEST(XmlDeclarationTest, AttributeListsAreRefused) {
  for (const char* const rest :
       {"CDATA #IMPLIED", "CDATA #REQUIRED", "CDATA 'default'", "CDATA #FIXED 'fixed'",
        "ID #IMPLIED", "IDREF #IMPLIED", "IDREFS #IMPLIED", "ENTITY #IMPLIED", "ENTITIES #IMPLIED",
        "NMTOKEN #IMPLIED", "NMTOKENS 'x y'", "NOTATION (x) #IMPLIED", "(x|y) 'x'"}) {
    EXPECT_FALSE(OpensWith(std::string("<!ATTLIST a n ") + rest + ">")) << rest;
    EXPECT_FALSE(OpensWith(std::string("<!ATTLIST unused n ") + rest + ">")) << rest;
  }
  EXPECT_FALSE(OpensWith("<!ATTLIST a xmlns CDATA 'urn:x'>"));
  EXPECT_FALSE(OpensWith("<!ATTLIST a xmlns:p CDATA #FIXED 'urn:p'>"));
}

TEST(XmlDeclarationTest, OtherDeclarationsAreIgnored) {
  for (const std::string& prolog :
       PrologsWith("<!ELEMENT a (b | (c, d)*)*><!ELEMENT b EMPTY><!NOTATION n SYSTEM 'x'>"
                   "<!-- <!ENTITY e 'x'> --><?p <!ENTITY e 'x'> ?>")) {
    EXPECT_EQ(RootText(prolog + "<a>x<!-- &e; -->y</a>"), "xy");
  }
  EXPECT_TRUE(OpensWith(""));
  EXPECT_TRUE(OpensWith("<!ATTLIST a>"));
}

// The parser itself passes over them.
TEST(XmlDeclarationTest, KnownCharactersMayBeDeclaredAgain) {
  for (const std::string& prolog : PrologsWith("<!ENTITY lt '&#38;#60;'><!ENTITY gt 'other'>")) {
    EXPECT_EQ(RootText(prolog + "<a>&lt;&gt;</a>"), "<>");
  }
}

TEST(XmlDeclarationTest, UndeclaredEntitiesAreRefused) {
  for (const std::string& prolog : PrologsWith("<!ELEMENT a ANY>")) {
    for (const char* const root :
         {"<a>&e;</a>", "<a>x<b>&e;</b></a>", "<a n='&e;'/>", "<a n='1' m='x &amp;&e;'/>",
          "<a><b/><b n=\"&#65;&e;\">x</b></a>", "<a xmlns='&e;'/>", "<a xmlns:p='urn:&e;'/>",
          "<a n='&ltx;'/>", "<a>&LT;</a>", "<a n='&LT;'/>"}) {
      EXPECT_FALSE(Opens(prolog + root)) << prolog << root;
    }
  }
  for (const char* const root : {"<a>&e;</a>", "<a n='&e;'/>", "<a xmlns='&e;'/>"}) {
    EXPECT_FALSE(Opens(std::string("<!DOCTYPE a SYSTEM 'x.dtd'>") + root)) << root;
    EXPECT_FALSE(Opens(std::string("<!DOCTYPE a>") + root)) << root;
    EXPECT_FALSE(Opens(root)) << root;
  }
}

TEST(XmlDeclarationTest, UndeclaredEntitiesAreSeenInLongTags) {
  for (const std::size_t length : {100U, 1000U, 1023U, 1024U, 10'000U, 1'000'000U}) {
    const std::string tag = "<a m='" + std::string(length, 'x') + "' n='";
    for (const std::string prolog : {"", "<?xml version='1.0' encoding='ISO-8859-1'?>"}) {
      const std::string begin = prolog + "<!DOCTYPE a SYSTEM 'x.dtd'>" + tag;
      EXPECT_TRUE(Opens(begin + "&lt;'/>")) << length;
      EXPECT_FALSE(Opens(begin + "&e;'/>")) << length;
    }
  }
}

TEST(XmlDeclarationTest, KnownReferencesStay) {
  for (const std::string& prolog : PrologsWith("")) {
    OpenDocument document(prolog +
                          "<a n='&lt;&amp;&gt;&apos;&quot;&#65;&#x42;' m='e;'>"
                          "&lt;<![CDATA[&e;]]><!-- &e; --><?p &e;?><b>&#67;</b></a>");
    EXPECT_EQ(document.Text("a"), "<&e;C");
    ASSERT_TRUE(document.Find("a"));
    EXPECT_EQ(document.Attribute("n"), "<&>'\"AB");
  }
}

// Each byte of U+2626 is that of an ampersand.
TEST(XmlDeclarationTest, ReferencesAreSeenInUtf16) {
  EXPECT_TRUE(Opens(Utf16(u"<!DOCTYPE a SYSTEM 'x.dtd'><a n='&lt;\u2626e;'/>")));
  EXPECT_FALSE(Opens(Utf16(u"<!DOCTYPE a SYSTEM 'x.dtd'><a n='&e;'/>")));
  EXPECT_FALSE(Opens(Utf16(u"<!DOCTYPE a [<!ENTITY e 'x'>]><a/>")));
}

TEST(XmlDeclarationTest, ParameterReferencesAndConditionalSectionsAreRefused) {
  for (const char* const subset :
       {"%p;", "%p;<!ENTITY e 'x'>", "%p;<!ATTLIST a n CDATA 'x'>", "<!ELEMENT a %p;>",
        "<![INCLUDE[<!ELEMENT a ANY>]]>", "<![INCLUDE[<!ENTITY e 'x'>]]>",
        "<![IGNORE[<!ENTITY e 'x'>]]>"}) {
    EXPECT_FALSE(OpensWith(subset)) << subset;
  }
}

}  // namespace
}  // namespace stowra_test
