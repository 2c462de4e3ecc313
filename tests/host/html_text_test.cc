// SPDX-License-Identifier: MIT
#include "host/html_text.h"

#include <gtest/gtest.h>

namespace stowra {
namespace {

TEST(HtmlTextTest, TakesTheTitle) {
  EXPECT_EQ(HtmlMessage("<!DOCTYPE html><html><head><meta charset=utf-8><title lang='en'>404 &amp; "
                        "more</title></head><body><h1>Not here</h1></body></html>"),
            "404 & more");
  EXPECT_EQ(HtmlMessage("<TITLE>a &lt;b&gt; &quot;c&quot;&#39;</TITLE>"), "a <b> \"c\"'");
}

TEST(HtmlTextTest, TakesTheFirstLineWithoutTitle) {
  EXPECT_EQ(HtmlMessage("<html><body>\n <h1>Not <b>here</b></h1><p>Sorry.</p></body></html>"),
            "Not here");
  EXPECT_EQ(HtmlMessage("<title> </title><p>x"), "x");
  EXPECT_EQ(HtmlMessage("<?xml version='1.0'?><error><code>7</code> is bad</error>"), "7 is bad");
  EXPECT_EQ(HtmlMessage("plain"), "plain");
}

TEST(HtmlTextTest, SkipsScriptsStylesAndComments) {
  EXPECT_EQ(HtmlMessage("<style>a{}</style><script>var x='<p>no';</script><!-- <p>no --><p>yes"),
            "yes");
}

TEST(HtmlTextTest, EndsAtBrokenMarkup) {
  for (const char* html : {"", "<", "<title", "<!--", "<script>", "<p></p>", "< >"}) {
    EXPECT_EQ(HtmlMessage(html), "") << html;
  }
  EXPECT_EQ(HtmlMessage("a <"), "a ");
}

}  // namespace
}  // namespace stowra
