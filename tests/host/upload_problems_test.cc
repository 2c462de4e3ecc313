// SPDX-License-Identifier: MIT
#include "host/upload_problems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace stowra {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kBoundary[] = "BrevixClient0123456789012345";

UploadForm GoodForm() {
  return {"a/chair.qmf", "chair.qmf", false, false, kBoundary, "BrevixClient9"};
}

TEST(UploadProblemsTest, FindsNoneInOrdinaryForm) {
  EXPECT_THAT(FindUploadProblems(GoodForm()), IsEmpty());
  UploadForm first = GoodForm();
  first.previous_boundary = "";
  EXPECT_THAT(FindUploadProblems(first), IsEmpty());
}

TEST(UploadProblemsTest, FindsQuotationMarkInFileName) {
  UploadForm form = GoodForm();
  form.file_name = "19\" rack.qmf";
  EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("quotation mark")));
}

TEST(UploadProblemsTest, FindsLineBreakInFileName) {
  UploadForm form = GoodForm();
  for (const char* name : {"a\nb", "a\rb", "\r\n"}) {
    form.file_name = name;
    EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("line break"))) << name;
  }
}

TEST(UploadProblemsTest, FindsFileNameThatIsNotUtf8) {
  UploadForm form = GoodForm();
  form.path = "a/St\xFChle.qmf";
  form.file_name = "St\uFFFDhle.qmf";
  EXPECT_THAT(FindUploadProblems(form),
              ElementsAre("the file name is not UTF-8 and is sent as St\uFFFDhle.qmf"));
  for (const char* path : {"Stühle.qmf", "\xFC/Stühle.qmf"}) {
    form.path = path;
    EXPECT_THAT(FindUploadProblems(form), IsEmpty()) << path;
  }
}

TEST(UploadProblemsTest, FindsFileThatIsNotZipped) {
  UploadForm form = GoodForm();
  form.zipped = true;
  EXPECT_THAT(FindUploadProblems(form),
              ElementsAre("the configuration asks for a zip file, but this is not one"));
  form.is_zip = true;
  EXPECT_THAT(FindUploadProblems(form), IsEmpty());
}

TEST(UploadProblemsTest, FindsBoundaryOfPreviousFile) {
  UploadForm form = GoodForm();
  form.previous_boundary = kBoundary;
  EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("within one second")));
}

TEST(UploadProblemsTest, FindsAllAtOnce) {
  EXPECT_EQ(FindUploadProblems({"\xFF", "\"\n", false, true, kBoundary, kBoundary}).size(), 5U);
}

}  // namespace
}  // namespace stowra
