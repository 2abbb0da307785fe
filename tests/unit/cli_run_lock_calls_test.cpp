// The system call that tells whose the folder of the lock is, made to fail.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/run_lock.h"
#include "doubles/failing_calls.h"
#include "doubles/scratch_folder.h"

SETS_ERRNO(int, -1, fstat, (int descriptor, struct stat *info), (descriptor, info))

namespace {

TEST(LockCalls, TrustNoFolderWhoseOwnerIsNotKnown) {
  const doubles::ScratchFolder scratch;
  doubles::failingCalls().fault = {.call = "fstat", .error = EIO};
  EXPECT_EQ(cli::RunLock(scratch.file("run")).error(), std::errc::io_error);
  EXPECT_TRUE(doubles::failingCalls().fault.happened);
}

}  // namespace
