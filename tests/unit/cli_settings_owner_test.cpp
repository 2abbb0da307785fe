#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "cli/settings_owner.h"
#include "doubles/scratch_folder.h"

namespace {

using cli::SettingsOwner;
using doubles::ScratchFolder;

struct stat fileStatus(const std::string &path) {
  struct stat info {};
  EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
  return info;
}

class Owner : public testing::Test {
 protected:
  ScratchFolder folder_;
  std::string path_ = folder_.file("daemon.settings.xml");
};

TEST_F(Owner, GivesTheModeBackAfterTheFileWasReplaced) {
  folder_.write("daemon.settings.xml", "old");
  ::chmod(path_.c_str(), 0664);
  const SettingsOwner owner(path_);
  EXPECT_EQ(ScratchFolder::read(path_), "old");
  ::unlink(path_.c_str());
  folder_.write("daemon.settings.xml", "new");
  ::chmod(path_.c_str(), 0600);
  EXPECT_FALSE(owner.restore());
  EXPECT_EQ(fileStatus(path_).st_mode & 07777, 0664U);
  EXPECT_EQ(ScratchFolder::read(path_), "new");
}

TEST_F(Owner, CreatesAMissingFileWithTheAccessRightsOfItsFolder) {
  ::chmod(folder_.path().c_str(), 0775);
  const SettingsOwner owner(path_);
  EXPECT_EQ(fileStatus(path_).st_mode & 07777, 0664U);
  EXPECT_EQ(fileStatus(path_).st_size, 0);
  EXPECT_FALSE(owner.restore());
  EXPECT_EQ(fileStatus(path_).st_mode & 07777, 0664U);
}

TEST_F(Owner, FollowsNoLinkThatWasThereOrThatReplacedTheFile) {
  const std::string target = folder_.write("target", "x");
  ::chmod(target.c_str(), 0600);
  folder_.write("daemon.settings.xml", "old");
  ::chmod(path_.c_str(), 0664);
  const SettingsOwner ofFile(path_);
  ::unlink(path_.c_str());
  ASSERT_EQ(::symlink(target.c_str(), path_.c_str()), 0);
  EXPECT_TRUE(ofFile.restore());
  EXPECT_FALSE(SettingsOwner(path_).restore());
  EXPECT_EQ(fileStatus(target).st_mode & 07777, 0600U);
  EXPECT_TRUE(S_ISLNK(fileStatus(path_).st_mode));
}

TEST_F(Owner, IgnoresAFileThatIsGoneAndAMissingFolder) {
  folder_.write("daemon.settings.xml", "old");
  const SettingsOwner owner(path_);
  ::unlink(path_.c_str());
  EXPECT_FALSE(owner.restore());
  EXPECT_FALSE(SettingsOwner(folder_.file("missing/daemon.settings.xml")).restore());
}

}  // namespace
