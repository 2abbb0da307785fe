#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "cli/run_lock.h"
#include "doubles/scratch_folder.h"

namespace {

using cli::readMark;
using cli::RunLock;
using doubles::ScratchFolder;

class Lock : public testing::Test {
 protected:
  ScratchFolder scratch_;
  std::string folder_ = scratch_.file("run");
};

TEST_F(Lock, MakesAFolderAndAFileThatNobodyElseMayUse) {
  const RunLock lock(folder_);
  EXPECT_FALSE(lock.isBusy());
  EXPECT_FALSE(lock.error());
  struct stat info;
  ASSERT_EQ(::stat(folder_.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0700U);
  ASSERT_EQ(::stat((folder_ + "/apply").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600U);
}

TEST_F(Lock, IsBusyWhileAnotherHasItAndFreeAfterwards) {
  {
    const RunLock first(folder_);
    const RunLock second(folder_);
    EXPECT_TRUE(second.isBusy());
    EXPECT_FALSE(second.error());
  }
  EXPECT_FALSE(RunLock(folder_).isBusy());
}

TEST_F(Lock, IsNotInheritedByCommands) {
  const RunLock lock(folder_);
  for (int descriptor = 3; descriptor < 64; ++descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFD);
    struct stat info;
    struct stat own;
    ASSERT_EQ(::stat((folder_ + "/apply").c_str(), &own), 0);
    if (flags < 0 || ::fstat(descriptor, &info) != 0 || info.st_ino != own.st_ino) continue;
    EXPECT_TRUE(flags & FD_CLOEXEC);
    return;
  }
  FAIL() << "the lock's descriptor was not found";
}

TEST_F(Lock, LeavesItsMarkBehind) {
  EXPECT_FALSE(readMark(folder_));
  {
    const RunLock lock(folder_);
    EXPECT_FALSE(lock.mark());
    EXPECT_FALSE(lock.setMark({.processGroup = 4711, .reset = true}));
  }
  ASSERT_TRUE(readMark(folder_));
  EXPECT_EQ(readMark(folder_)->processGroup, 4711);
  EXPECT_TRUE(readMark(folder_)->reset);
  const RunLock lock(folder_);
  ASSERT_TRUE(lock.mark());
  EXPECT_EQ(lock.mark()->processGroup, 4711);
  EXPECT_FALSE(lock.setMark({.processGroup = 7, .reset = false}));
  EXPECT_EQ(ScratchFolder::read(folder_ + "/apply"), "7\n");
  EXPECT_FALSE(lock.mark()->reset);
  EXPECT_FALSE(lock.clearMark());
  EXPECT_FALSE(lock.mark());
  EXPECT_FALSE(readMark(folder_));
}

TEST_F(Lock, TakesWhateverIsInTheFileForAMark) {
  ASSERT_FALSE(RunLock(folder_).error());
  for (const char *text : {"x", "\n", "99999999999999999999 reset", "-5"}) {
    scratch_.write("run/apply", text);
    EXPECT_TRUE(readMark(folder_)) << text;
  }
}

TEST_F(Lock, IsRefusedInAFolderThatOthersMayWriteTo) {
  std::filesystem::create_directory(folder_);
  std::filesystem::permissions(folder_, std::filesystem::perms::all);
  const RunLock lock(folder_);
  EXPECT_FALSE(lock.isBusy());
  EXPECT_EQ(lock.error(), std::errc::operation_not_permitted);
  EXPECT_FALSE(std::filesystem::exists(folder_ + "/apply"));
  scratch_.write("run/apply", "1\n");
  EXPECT_FALSE(readMark(folder_));
}

TEST_F(Lock, FollowsNoSymbolicLinkToOrInItsFolder) {
  const std::string other = scratch_.file("other");
  std::filesystem::create_directory(other);
  std::filesystem::create_symlink(other, folder_);
  EXPECT_TRUE(RunLock(folder_).error());
  EXPECT_TRUE(std::filesystem::is_empty(other));

  std::filesystem::permissions(other, std::filesystem::perms::owner_all);
  std::filesystem::create_symlink(scratch_.write("target", "1\n"), other + "/apply");
  EXPECT_TRUE(RunLock(other).error());
  EXPECT_FALSE(readMark(other));
}

TEST_F(Lock, IsRefusedWhenTheFolderCannotBeCreated) {
  EXPECT_EQ(RunLock(scratch_.file("missing/run")).error(), std::errc::no_such_file_or_directory);
}

double secondsToWait(pid_t group, double limit) {
  const auto began = std::chrono::steady_clock::now();
  cli::waitForProcessGroup(group, limit);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

constexpr double kLongWait = 60;

TEST(LeftoverCommands, AreWaitedForUpToALimit) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::pause();
    ::_exit(0);
  }
  ::setpgid(child, child);
  EXPECT_GE(secondsToWait(child, 0.1), 0.1);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_LT(secondsToWait(child, kLongWait), kLongWait);
}

TEST(LeftoverCommands, AreNotWaitedForInTheToolsOwnGroupOrAnInvalidOne) {
  for (const pid_t group : {::getpgrp(), 1, 0, -1}) {
    EXPECT_LT(secondsToWait(group, kLongWait), kLongWait);
  }
}

}  // namespace
