// server.plist is rewritten while another process reads it without a pause.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <new>

#include "agent/server_plist.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/scratch_folder.h"

namespace {

using doubles::ScratchFolder;

constexpr int kRewrites = 10000;

/// What the two processes share.
struct Watch {
  std::atomic<bool> stop{false};
  std::atomic<long> reads{0};
  std::atomic<long> bad{0};
  std::array<std::atomic<long>, 2> seen{};
};

Watch &sharedWatch() {
  void *memory =
      ::mmap(nullptr, sizeof(Watch), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANON, -1, 0);
  return *new (memory) Watch;
}

/// Two settings whose files differ in length by many blocks, so that a part of one shows.
std::array<agent::ServerPlist, 2> settingsToSwap() {
  return {agent::ServerPlist{.server = "192.0.2.10", .port = "6000", .lang = "en"},
          agent::ServerPlist{
              .server = std::string(100'000, 'x'), .port = "4000", .lang = "fr", .profile = true}};
}

void readUntilStopped(const std::string &path, Watch &watch) {
  std::array<std::string, 2> whole;
  for (std::size_t i = 0; i < whole.size(); ++i) whole[i] = serverPlistText(settingsToSwap()[i]);
  while (!watch.stop) {
    const std::string content = ScratchFolder::read(path);
    ++watch.reads;
    if (content == whole[0]) {
      ++watch.seen[0];
    } else if (content == whole[1]) {
      ++watch.seen[1];
    } else {
      ++watch.bad;  // missing and unreadable show as empty
    }
  }
}

TEST(TenThousandRewrites, NeverShowAReaderAMissingEmptyOrPartialFile) {
  const ScratchFolder folder;
  const std::string path = folder.file("server.plist");
  doubles::setServerPlistPath(path);
  const auto settings = settingsToSwap();
  agent::generateServerPlistFile(settings[0]);

  Watch &watch = sharedWatch();
  const pid_t reader = ::fork();
  if (reader == 0) {
    readUntilStopped(path, watch);
    ::_exit(0);
  }
  for (int i = 1; i <= kRewrites; ++i) agent::generateServerPlistFile(settings[i % 2]);
  watch.stop = true;
  ASSERT_EQ(::waitpid(reader, nullptr, 0), reader);

  std::printf("%ld reads during %d rewrites, %ld of one content and %ld of the other\n",
              watch.reads.load(), kRewrites, watch.seen[0].load(), watch.seen[1].load());
  EXPECT_EQ(watch.bad, 0);
  EXPECT_GE(watch.seen[0], 100);
  EXPECT_GE(watch.seen[1], 100);
  EXPECT_EQ(ScratchFolder::read(path), serverPlistText(settings[0]));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

}  // namespace
