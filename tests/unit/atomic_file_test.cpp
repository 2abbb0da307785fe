#include "agent/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "doubles/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using doubles::ScratchFolder;

class AtomicFile : public testing::Test {
 protected:
  static mode_t fileMode(const std::string &path) {
    struct stat info {};
    EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777;
  }

  ScratchFolder folder_;
  std::string path_ = folder_.file("target");
};

TEST_F(AtomicFile, GetsMode644WhateverTheUmaskWhenItIsNew) {
  const mode_t before = ::umask(077);
  EXPECT_FALSE(agent::writeFileAtomically(path_, "content"));
  ::umask(before);
  EXPECT_EQ(ScratchFolder::read(path_), "content");
  EXPECT_EQ(fileMode(path_), 0644U);
  EXPECT_EQ(folder_.entries(), 1);
}

TEST_F(AtomicFile, KeepsThePermissionsOfTheOldOne) {
  for (const mode_t mode : {0600U, 0664U, 0444U, 04644U}) {
    folder_.write("target", "old");
    ASSERT_EQ(::chmod(path_.c_str(), mode), 0);
    EXPECT_FALSE(agent::writeFileAtomically(path_, "new"));
    EXPECT_EQ(ScratchFolder::read(path_), "new");
    EXPECT_EQ(fileMode(path_), mode);
    fs::remove(path_);
  }
}

TEST_F(AtomicFile, ContainsEveryByte) {
  std::string content("\0\n\r\xFF", 4);
  content.append(3'000'000, 'x');
  EXPECT_FALSE(agent::writeFileAtomically(path_, content));
  EXPECT_EQ(ScratchFolder::read(path_), content);
  EXPECT_FALSE(agent::writeFileAtomically(path_, ""));
  EXPECT_EQ(ScratchFolder::read(path_), "");
}

TEST_F(AtomicFile, ReplacesALinkAndNotItsTarget) {
  const std::string other = folder_.write("other", "untouched");
  ASSERT_EQ(::chmod(other.c_str(), 0600), 0);
  for (const char *target : {"other", "nowhere"}) {
    fs::remove(path_);
    fs::create_symlink(folder_.file(target), path_);
    EXPECT_FALSE(agent::writeFileAtomically(path_, "new"));
    EXPECT_FALSE(fs::is_symlink(path_));
    EXPECT_EQ(ScratchFolder::read(path_), "new");
    EXPECT_EQ(fileMode(path_), 0644U);
  }
  EXPECT_EQ(ScratchFolder::read(other), "untouched");
  EXPECT_FALSE(fs::exists(folder_.file("nowhere")));
}

TEST_F(AtomicFile, DoesNotReplaceAFolderAndLeavesNoTemporaryFile) {
  fs::create_directory(path_);
  EXPECT_EQ(agent::writeFileAtomically(path_, "x"), std::errc::is_a_directory);
  EXPECT_TRUE(fs::is_directory(path_));
  EXPECT_EQ(folder_.entries(), 1);
}

TEST_F(AtomicFile, LeavesTheOldFileAndNoTemporaryOneWhenTheContentDoesNotFit) {
  folder_.write("target", "old");
  // A limit on file sizes makes a write fail half-way.
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{.rlim_cur = 10000, .rlim_max = before.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &small);
  const std::error_code error = agent::writeFileAtomically(path_, std::string(20000, 'x'));
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(error, std::errc::file_too_large);
  EXPECT_EQ(ScratchFolder::read(path_), "old");
  EXPECT_EQ(folder_.entries(), 1);
}

}  // namespace
