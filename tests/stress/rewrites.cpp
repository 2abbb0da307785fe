// Rewrites server.plist while another process keeps reading it.

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
struct Counters {
  std::atomic<bool> stop{false};
  std::atomic<long> reads{0};
  std::atomic<long> bad{0};
  std::array<std::atomic<long>, 2> seen{};
};

Counters &sharedCounters() {
  void *memory =
      ::mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANON, -1, 0);
  return *new (memory) Counters;
}

/// Two settings whose files differ in length by many blocks, so that a partial file is noticed.
std::array<agent::ServerPlist, 2> settingsToSwap() {
  return {agent::ServerPlist{.server = "192.0.2.10", .port = "6000", .lang = "en"},
          agent::ServerPlist{
              .server = std::string(100'000, 'x'), .port = "4000", .lang = "fr", .profile = true}};
}

void readUntilStopped(const std::string &path, Counters &counters) {
  std::array<std::string, 2> whole;
  for (std::size_t i = 0; i < whole.size(); ++i) whole[i] = serverPlistText(settingsToSwap()[i]);
  while (!counters.stop) {
    const std::string content = ScratchFolder::read(path);
    ++counters.reads;
    if (content == whole[0]) {
      ++counters.seen[0];
    } else if (content == whole[1]) {
      ++counters.seen[1];
    } else {
      ++counters.bad;  // a missing or unreadable file reads as empty
    }
  }
}

TEST(TenThousandRewrites, NeverShowAReaderAMissingEmptyOrPartialFile) {
  const ScratchFolder folder;
  const std::string path = folder.file("server.plist");
  doubles::setServerPlistPath(path);
  const auto settings = settingsToSwap();
  agent::generateServerPlistFile(settings[0]);

  Counters &counters = sharedCounters();
  const pid_t reader = ::fork();
  if (reader == 0) {
    readUntilStopped(path, counters);
    ::_exit(0);
  }
  for (int i = 1; i <= kRewrites; ++i) agent::generateServerPlistFile(settings[i % 2]);
  counters.stop = true;
  ASSERT_EQ(::waitpid(reader, nullptr, 0), reader);

  std::printf("%ld reads during %d rewrites, %ld of one content and %ld of the other\n",
              counters.reads.load(), kRewrites, counters.seen[0].load(), counters.seen[1].load());
  EXPECT_EQ(counters.bad, 0);
  EXPECT_GE(counters.seen[0], 100);
  EXPECT_GE(counters.seen[1], 100);
  EXPECT_EQ(ScratchFolder::read(path), serverPlistText(settings[0]));
  EXPECT_EQ(folder.entries(), 1);
}

}  // namespace
