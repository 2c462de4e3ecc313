// SPDX-License-Identifier: MIT
#include "host/upload_problems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/text.h"

namespace stowra {
namespace {

constexpr char kNew[] = "BrevixClient0123456789012345";
constexpr char kOld[] = "BrevixClient9";
constexpr char kQuotationMark[] = "a server may cut the file name at its quotation mark";
constexpr char kLineBreak[] = "a server may cut the file name at its line break";
constexpr char kNotUtf8[] = "the file name is not UTF-8 and is sent as St\uFFFDhle.qmf";
constexpr char kNotZipped[] = "the configuration asks for a zip file, but this is not one";
constexpr char kSameBoundary[] =
    "the boundary is the same as for the previous file, because both were made within one second";

struct Row {
  const char* name;
  UploadForm form;
  const char* problem;
};

class UploadProblemsTest : public testing::TestWithParam<Row> {};

TEST_P(UploadProblemsTest, FindsTheProblem) {
  EXPECT_THAT(FindUploadProblems(GetParam().form), testing::ElementsAre(GetParam().problem));
}

INSTANTIATE_TEST_SUITE_P(
    , UploadProblemsTest,
    testing::Values(
        Row{"QuotationMark", {"a", "19\" rack.qmf", false, false, kNew, kOld}, kQuotationMark},
        Row{"LineFeed", {"a", "a\nb", false, false, kNew, kOld}, kLineBreak},
        Row{"CarriageReturn", {"a", "a\rb", false, false, kNew, kOld}, kLineBreak},
        Row{"BothLineEnds", {"a", "\r\n", false, false, kNew, kOld}, kLineBreak},
        Row{"NotUtf8", {"a/St\xFChle.qmf", "St\uFFFDhle.qmf", false, false, kNew, kOld}, kNotUtf8},
        Row{"NotZipped", {"a", "a", false, true, kNew, kOld}, kNotZipped},
        Row{"SameBoundary", {"a", "a", false, false, kNew, kNew}, kSameBoundary}),
    stowra_test::RowName());

TEST(UploadFormTest, HasNoProblem) {
  const UploadForm forms[] = {
      {"a/chair.qmf", "chair.qmf", false, false, kNew, kOld},
      {"a/chair.qmf", "chair.qmf", false, false, kNew, ""},
      {"a/chair.qmf", "chair.qmf", true, true, kNew, kOld},
      {"Stühle.qmf", "St\uFFFDhle.qmf", false, false, kNew, kOld},
      {"\xFC/Stühle.qmf", "St\uFFFDhle.qmf", false, false, kNew, kOld},
  };
  for (const UploadForm& form : forms) {
    EXPECT_THAT(FindUploadProblems(form), testing::IsEmpty()) << form.path;
  }
}

TEST(UploadFormTest, HasAllProblemsAtOnce) {
  EXPECT_EQ(FindUploadProblems({"\xFF", "\"\n", false, true, kNew, kNew}).size(), 5U);
}

}  // namespace
}  // namespace stowra
