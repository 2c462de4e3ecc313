#include "host/upload_problems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace stowra {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kBoundary[] = "BrevixClient0123456789012345";

UploadForm GoodForm() { return {"chair.qmf", "content", 500, kBoundary, "BrevixClient9"}; }

TEST(UploadProblemsTest, OrdinaryFormHasNone) {
  EXPECT_THAT(FindUploadProblems(GoodForm()), IsEmpty());
  UploadForm first = GoodForm();
  first.previous_boundary = "";
  EXPECT_THAT(FindUploadProblems(first), IsEmpty());
}

TEST(UploadProblemsTest, QuotationMarkInTheName) {
  UploadForm form = GoodForm();
  form.file_name = "19\" rack.qmf";
  EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("quotation mark")));
}

TEST(UploadProblemsTest, LineBreakInTheName) {
  UploadForm form = GoodForm();
  for (const char* name : {"a\nb", "a\rb", "\r\n"}) {
    form.file_name = name;
    EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("line break"))) << name;
  }
}

TEST(UploadProblemsTest, BoundaryInTheContent) {
  UploadForm form = GoodForm();
  for (const std::string& content : {std::string(kBoundary), std::string(1000, 'B') + kBoundary,
                                     std::string("\0--", 3) + kBoundary + "--"}) {
    form.content = content;
    EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr(kBoundary)));
  }
  const std::string part = std::string(kBoundary).substr(0, 27);
  form.content = part;
  EXPECT_THAT(FindUploadProblems(form), IsEmpty());
}

TEST(UploadProblemsTest, TwoGibibytes) {
  UploadForm form = GoodForm();
  form.size = 2147483647;
  EXPECT_THAT(FindUploadProblems(form), IsEmpty());
  form.size = 2147483648;
  EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("2 GiB")));
  form.size = 3000000000;
  EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("2 GiB")));
}

TEST(UploadProblemsTest, BoundaryOfTheFileBefore) {
  UploadForm form = GoodForm();
  form.previous_boundary = kBoundary;
  EXPECT_THAT(FindUploadProblems(form), ElementsAre(HasSubstr("within one second")));
}

TEST(UploadProblemsTest, AllAtOnce) {
  const std::string content = std::string("x") + kBoundary;
  EXPECT_EQ(FindUploadProblems({"\"\n", content, 4000000000, kBoundary, kBoundary}).size(), 5U);
}

}  // namespace
}  // namespace stowra
