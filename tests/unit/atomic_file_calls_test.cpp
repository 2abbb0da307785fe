// The system calls of an atomic write: their order, and each made to fail.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "agent/atomic_file.h"
#include "doubles/failing_calls.h"
#include "doubles/scratch_folder.h"

SETS_ERRNO(ssize_t, -1, write, (int descriptor, const void *bytes, size_t size),
           (descriptor, bytes, size))
SETS_ERRNO(int, -1, fchmod, (int descriptor, mode_t mode), (descriptor, mode))
SETS_ERRNO(int, -1, fsync, (int descriptor), (descriptor))
SETS_ERRNO(int, -1, rename, (const char *from, const char *to), (from, to))

static std::string temporaryFile;

extern "C" int __real_mkstemp(char *pattern);
extern "C" int __wrap_mkstemp(char *pattern) {
  temporaryFile = pattern;
  return doubles::fails("mkstemp") ? -1 : __real_mkstemp(pattern);
}

namespace {

using doubles::failingCalls;
using doubles::ScratchFolder;
using Calls = std::vector<std::string>;

class AtomicFileCalls : public testing::Test {
 protected:
  void TearDown() override { failingCalls() = {}; }

  std::error_code write(const std::string &content) const {
    failingCalls().made.clear();
    return agent::writeFileAtomically(path_, content);
  }

  ScratchFolder folder_;
  std::string path_ = folder_.write("target", "old");
};

TEST_F(AtomicFileCalls, PutTheContentOnTheDiskBeforeTheRename) {
  EXPECT_FALSE(write("new"));
  EXPECT_EQ(failingCalls().made, (Calls{"mkstemp", "write", "fchmod", "fsync", "rename"}));
  EXPECT_EQ(temporaryFile, path_ + ".XXXXXX") << "in the folder of the file";
}

TEST_F(AtomicFileCalls, LeaveTheOldFileAndNoTemporaryOneWhicheverFails) {
  for (const char *call : {"mkstemp", "write", "fchmod", "fsync", "rename"}) {
    SCOPED_TRACE(call);
    failingCalls().fault = {.call = call, .error = EIO};
    EXPECT_EQ(write("new"), std::errc::io_error);
    EXPECT_TRUE(failingCalls().fault.happened);
    EXPECT_EQ(failingCalls().made.back(), call);
    EXPECT_EQ(ScratchFolder::read(path_), "old");
    EXPECT_EQ(folder_.entries(), 1);
  }
}

TEST_F(AtomicFileCalls, WriteAgainAfterASignal) {
  failingCalls().fault = {.call = "write", .error = EINTR};
  EXPECT_FALSE(write("new"));
  EXPECT_EQ(failingCalls().made, (Calls{"mkstemp", "write", "write", "fchmod", "fsync", "rename"}));
  EXPECT_EQ(ScratchFolder::read(path_), "new");
}

}  // namespace
