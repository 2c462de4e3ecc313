// SPDX-License-Identifier: MIT
#include "host/file_access.h"

#include <sys/stat.h>

#include "tests/host/host_test.h"

namespace stowra {
namespace {

using std::filesystem::create_directory;
using std::filesystem::create_symlink;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class FileAccessTest : public stowra_test::FolderTest {
 protected:
  // Why this file cannot be replaced. It has not been written, and CanReplaceFile says the same.
  std::string WhyNot(const std::string& name) const {
    std::string why;
    std::string foreseen;
    EXPECT_FALSE(WriteFile(Path(name), "new", Existing::kReplace, why)) << name;
    EXPECT_FALSE(CanReplaceFile(Path(name), foreseen)) << name;
    EXPECT_EQ(why, foreseen) << name;
    return why;
  }

  std::string why_;
};

TEST_F(FileAccessTest, WritesAndReadsEveryByte) {
  std::string content;
  for (int i = 0; i < 100000; ++i) content += static_cast<char>(i + i / 256);
  for (const Existing existing : {Existing::kKeep, Existing::kReplace}) {
    const std::string file = Path(existing == Existing::kKeep ? "a" : "b");
    ASSERT_TRUE(WriteFile(file, content, existing, why_)) << why_;
    std::string read = "old";
    ASSERT_TRUE(ReadFile(file, read, why_)) << why_;
    EXPECT_TRUE(read == content);
  }
  EXPECT_EQ(Files().size(), 2U);
}

TEST_F(FileAccessTest, GivesNewFileTheDefaultMode) {
  const mode_t mask = umask(022);
  ASSERT_TRUE(WriteFile(Path("a"), "x", Existing::kKeep, why_));
  umask(mask);
  struct stat status = {};
  ASSERT_EQ(stat(Path("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0644U);
  EXPECT_EQ(status.st_nlink, 1U);
}

TEST_F(FileAccessTest, KeepsExistingFile) {
  Make("a", "old");
  EXPECT_FALSE(WriteFile(Path("a"), "new", Existing::kKeep, why_));
  EXPECT_EQ(why_, "File exists");
  EXPECT_THAT(Files(), ElementsAre(Pair("a", "old")));
}

TEST_F(FileAccessTest, ReplacesExistingFile) {
  Make("a", "a longer one");
  ASSERT_TRUE(WriteFile(Path("a"), "new", Existing::kReplace, why_)) << why_;
  EXPECT_THAT(Files(), ElementsAre(Pair("a", "new")));
}

TEST_F(FileAccessTest, KeepsDanglingLink) {
  create_symlink("nowhere", Path("a"));
  EXPECT_FALSE(WriteFile(Path("a"), "new", Existing::kKeep, why_));
  EXPECT_THAT(Files(), ElementsAre(Pair("a", _)));
}

TEST_F(FileAccessTest, ReplacesOnlyRegularFiles) {
  Make("a", "old");
  create_directory(Path("folder"));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(WhyNot("folder"), "not a regular file");
  EXPECT_EQ(WhyNot("folder/"), "not a regular file");
  EXPECT_EQ(WhyNot("fifo"), "not a regular file");
  EXPECT_EQ(WhyNot("none/new"), "No such file or directory");
  EXPECT_EQ(WhyNot("none/"), "No such file or directory");
  EXPECT_EQ(WhyNot("a/new"), "Not a directory");
  EXPECT_EQ(WhyNot(std::string(300, 'a')), "File name too long");
  EXPECT_THAT(Files(), ElementsAre(Pair("a", "old"), Pair("fifo", _), Pair("folder", _)));
  EXPECT_TRUE(std::filesystem::is_fifo(Path("fifo")));
  EXPECT_TRUE(std::filesystem::is_directory(Path("folder")));
}

TEST_F(FileAccessTest, ReplacesLinkTargetAndKeepsLink) {
  create_directory(Path("folder"));
  Make("folder/a", "old");
  create_symlink("folder/a", Path("near"));
  create_symlink(Path("near"), Path("far"));
  for (const char* link : {"near", "far"}) {
    ASSERT_TRUE(WriteFile(Path(link), link, Existing::kReplace, why_)) << why_;
    EXPECT_TRUE(std::filesystem::is_symlink(Path(link)));
    EXPECT_FALSE(std::filesystem::is_symlink(Path("folder/a")));
    EXPECT_EQ(stowra_test::ReadFile(Path("folder/a")), link);
  }
  EXPECT_EQ(Files().size(), 3U);
}

TEST_F(FileAccessTest, RefusesLinkToAnythingButAFile) {
  create_directory(Path("folder"));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  const std::pair<const char*, const char*> rows[] = {
      {"folder", "not a regular file"},
      {"fifo", "not a regular file"},
      {"nowhere", "No such file or directory"},
      {"link", "Too many levels of symbolic links"},
  };
  for (const auto& [target, why] : rows) {
    create_symlink(target, Path("link"));
    EXPECT_EQ(WhyNot("link"), why) << target;
    EXPECT_EQ(std::filesystem::read_symlink(Path("link")), target);
    std::filesystem::remove(Path("link"));
  }
  EXPECT_EQ(Files().size(), 2U);
  EXPECT_TRUE(std::filesystem::is_fifo(Path("fifo")));
}

TEST_F(FileAccessTest, KeepsModeOfReplacedFile) {
  Make("a", "old");
  create_symlink("a", Path("link"));
  for (const char* name : {"a", "link"}) {
    for (const mode_t mode : {0600U, 0640U, 0777U, 0400U}) {
      ASSERT_EQ(chmod(Path("a").c_str(), mode), 0);
      ASSERT_TRUE(WriteFile(Path(name), "new", Existing::kReplace, why_)) << why_;
      struct stat status = {};
      ASSERT_EQ(stat(Path("a").c_str(), &status), 0);
      EXPECT_EQ(status.st_mode & 07777U, mode) << name;
    }
  }
}

TEST_F(FileAccessTest, TellsWhetherFileCanBeReplaced) {
  Make("a", "old");
  create_directory(Path("folder"));
  create_symlink("a", Path("link"));
  for (const char* name : {"a", "link", "new", "folder/new"}) {
    EXPECT_TRUE(CanReplaceFile(Path(name), why_)) << name << ": " << why_;
  }
  EXPECT_THAT(Files(), ElementsAre(Pair("a", "old"), Pair("folder", _), Pair("link", "old")));
}

TEST_F(FileAccessTest, TellsWhetherFolderTakesAFile) {
  EXPECT_TRUE(CanMakeFileIn(Path(""), why_)) << why_;
  EXPECT_FALSE(CanMakeFileIn(Path("none"), why_));
  EXPECT_EQ(why_, "No such file or directory");
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(FileAccessTest, ReportsTooLongName) {
  EXPECT_FALSE(WriteFile(Path(std::string(300, 'a')), "new", Existing::kKeep, why_));
  EXPECT_EQ(why_, "File name too long");
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(FileAccessTest, ReportsUnreadableFile) {
  std::string content;
  EXPECT_FALSE(ReadFile(Path("none"), content, why_));
  EXPECT_EQ(why_, "No such file or directory");
  EXPECT_FALSE(ReadFile(Path(""), content, why_));
  EXPECT_EQ(why_, "Is a directory");
}

}  // namespace
}  // namespace stowra
