// SPDX-License-Identifier: MIT
#include "host/upload_problems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST(UploadFormTest, HasOneProblem) {
  const std::pair<UploadForm, const char*> rows[] = {
      {{"a", "19\" rack.qmf", false, false, kNew, kOld}, kQuotationMark},
      {{"a", "a\nb", false, false, kNew, kOld}, kLineBreak},
      {{"a", "a\rb", false, false, kNew, kOld}, kLineBreak},
      {{"a", "\r\n", false, false, kNew, kOld}, kLineBreak},
      {{"a/St\xFChle.qmf", "St\uFFFDhle.qmf", false, false, kNew, kOld}, kNotUtf8},
      {{"a", "a", false, true, kNew, kOld}, kNotZipped},
      {{"a", "a", false, false, kNew, kNew}, kSameBoundary},
  };
  for (const auto& [form, problem] : rows) {
    EXPECT_THAT(FindUploadProblems(form), testing::ElementsAre(problem)) << form.file_name;
  }
}

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
