// SPDX-License-Identifier: MIT
#include "host/file_access.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tests/support/corpora.h"
#include "tests/support/temporary_folder.h"

namespace stowra {
namespace {

using stowra_test::TemporaryFolder;

class FileAccessTest : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return (folder_.path() / name).string(); }

  void Make(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
  }

  std::size_t Count() const {
    using std::filesystem::directory_iterator;
    return static_cast<std::size_t>(
        std::distance(directory_iterator(folder_.path()), directory_iterator()));
  }

  std::string why_;

 private:
  const TemporaryFolder folder_;
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
  EXPECT_EQ(Count(), 2U);
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
  EXPECT_EQ(stowra_test::ReadFile(Path("a")), "old");
  EXPECT_EQ(Count(), 1U);
}

TEST_F(FileAccessTest, ReplacesExistingFile) {
  Make("a", "a longer one");
  ASSERT_TRUE(WriteFile(Path("a"), "new", Existing::kReplace, why_)) << why_;
  EXPECT_EQ(stowra_test::ReadFile(Path("a")), "new");
  EXPECT_EQ(Count(), 1U);
}

TEST_F(FileAccessTest, KeepsDanglingLink) {
  std::filesystem::create_symlink("nowhere", Path("a"));
  EXPECT_FALSE(WriteFile(Path("a"), "new", Existing::kKeep, why_));
  EXPECT_EQ(Count(), 1U);
}

TEST_F(FileAccessTest, ReplacesOnlyRegularFiles) {
  std::filesystem::create_directory(Path("folder"));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  for (const char* name : {"folder", "fifo"}) {
    EXPECT_FALSE(WriteFile(Path(name), "new", Existing::kReplace, why_)) << name;
    EXPECT_EQ(why_, "not a regular file");
    EXPECT_FALSE(std::filesystem::is_regular_file(Path(name)));
  }
  EXPECT_EQ(Count(), 2U);
}

TEST_F(FileAccessTest, ReplacesLinkTargetAndKeepsLink) {
  std::filesystem::create_directory(Path("folder"));
  Make("folder/a", "old");
  std::filesystem::create_symlink("folder/a", Path("near"));
  std::filesystem::create_symlink(Path("near"), Path("far"));
  for (const char* link : {"near", "far"}) {
    ASSERT_TRUE(WriteFile(Path(link), link, Existing::kReplace, why_)) << why_;
    EXPECT_TRUE(std::filesystem::is_symlink(Path(link)));
    EXPECT_FALSE(std::filesystem::is_symlink(Path("folder/a")));
    EXPECT_EQ(stowra_test::ReadFile(Path("folder/a")), link);
  }
  EXPECT_EQ(Count(), 3U);
}

TEST_F(FileAccessTest, RefusesLinkToAnythingButAFile) {
  std::filesystem::create_directory(Path("folder"));
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  const struct {
    const char* target;
    const char* why;
  } cases[] = {{"folder", "not a regular file"},
               {"fifo", "not a regular file"},
               {"nowhere", "No such file or directory"},
               {"link", "Too many levels of symbolic links"}};
  for (const auto& [target, why] : cases) {
    std::filesystem::create_symlink(target, Path("link"));
    EXPECT_FALSE(WriteFile(Path("link"), "new", Existing::kReplace, why_)) << target;
    EXPECT_EQ(why_, why) << target;
    EXPECT_FALSE(CanReplaceFile(Path("link"), why_)) << target;
    EXPECT_EQ(why_, why) << target;
    EXPECT_EQ(std::filesystem::read_symlink(Path("link")), target);
    std::filesystem::remove(Path("link"));
  }
  EXPECT_EQ(Count(), 2U);
  EXPECT_TRUE(std::filesystem::is_fifo(Path("fifo")));
}

TEST_F(FileAccessTest, KeepsModeOfReplacedFile) {
  Make("a", "old");
  std::filesystem::create_symlink("a", Path("link"));
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
  std::filesystem::create_directory(Path("folder"));
  std::filesystem::create_symlink("a", Path("link"));
  for (const char* name : {"a", "link", "new", "folder/new"}) {
    EXPECT_TRUE(CanReplaceFile(Path(name), why_)) << name << ": " << why_;
  }
  const struct {
    std::string name;
    const char* why;
  } cases[] = {{"folder", "not a regular file"},
               {"folder/", "not a regular file"},
               {"none/new", "No such file or directory"},
               {"none/", "No such file or directory"},
               {"a/new", "Not a directory"},
               {std::string(300, 'a'), "File name too long"}};
  for (const auto& [name, why] : cases) {
    EXPECT_FALSE(CanReplaceFile(Path(name), why_)) << name;
    EXPECT_EQ(why_, why) << name;
  }
  EXPECT_EQ(stowra_test::ReadFile(Path("a")), "old");
  EXPECT_EQ(Count(), 3U);
}

TEST_F(FileAccessTest, TellsWhetherFolderTakesAFile) {
  EXPECT_TRUE(CanMakeFileIn(Path(""), why_)) << why_;
  EXPECT_FALSE(CanMakeFileIn(Path("none"), why_));
  EXPECT_EQ(why_, "No such file or directory");
  EXPECT_EQ(Count(), 0U);
}

TEST_F(FileAccessTest, ReportsMissingFolder) {
  EXPECT_FALSE(WriteFile(Path("none/a"), "new", Existing::kReplace, why_));
  EXPECT_EQ(why_, "No such file or directory");
  EXPECT_EQ(Count(), 0U);
}

TEST_F(FileAccessTest, ReportsTooLongNameAndLeavesNothing) {
  EXPECT_FALSE(WriteFile(Path(std::string(300, 'a')), "new", Existing::kKeep, why_));
  EXPECT_EQ(why_, "File name too long");
  EXPECT_FALSE(WriteFile(Path(std::string(300, 'a')), "new", Existing::kReplace, why_));
  EXPECT_EQ(Count(), 0U);
}

TEST_F(FileAccessTest, ReportsUnreadableFile) {
  std::string content;
  EXPECT_FALSE(ReadFile(Path("none"), content, why_));
  EXPECT_EQ(why_, "No such file or directory");
  std::filesystem::create_directory(Path("folder"));
  EXPECT_FALSE(ReadFile(Path("folder"), content, why_));
  EXPECT_EQ(why_, "Is a directory");
}

}  // namespace
}  // namespace stowra
