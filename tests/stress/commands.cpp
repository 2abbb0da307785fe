// Thousands of commands in every mode, while signals keep arriving.

#include <gtest/gtest.h>
#include <sys/time.h>

#include <csignal>
#include <string>

#include "agent/shell.h"
#include "doubles/process_state.h"

#ifdef __APPLE__
#include <malloc/malloc.h>
#else
#include <malloc.h>
#endif

namespace {

using agent::ShellMode;
using agent::ShellResult;

constexpr int kCalls = 10000;
constexpr int kCallsToWarmUp = 500;

volatile sig_atomic_t alarms;
volatile sig_atomic_t childSignals;

/// While this exists, SIGALRM arrives every 2 ms, and both it and SIGCHLD interrupt system calls.
class Signals {
 public:
  Signals() {
    alarms = 0;
    childSignals = 0;
    struct sigaction action {};
    action.sa_handler = [](int signal) {
      if (signal == SIGALRM) alarms = alarms + 1;
      if (signal == SIGCHLD) childSignals = childSignals + 1;
    };
    ::sigaction(SIGALRM, &action, &alarmBefore_);
    ::sigaction(SIGCHLD, &action, &childBefore_);
    const itimerval often{.it_interval = {0, 2000}, .it_value = {0, 2000}};
    ::setitimer(ITIMER_REAL, &often, nullptr);
  }
  ~Signals() {
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &alarmBefore_, nullptr);
    ::sigaction(SIGCHLD, &childBefore_, nullptr);
  }
  Signals(const Signals &) = delete;
  Signals &operator=(const Signals &) = delete;

 private:
  struct sigaction alarmBefore_ {};
  struct sigaction childBefore_ {};
};

/// What the process has allocated and not freed. The size of the process would not do: the system
/// counts it in portions of 256 kB and more.
std::size_t bytesInUse() {
#ifdef __APPLE__
  return ::mstats().bytes_used;
#else
  return ::mallinfo2().uordblks;
#endif
}

/// The i-th call in that mode, with a result that differs from its neighbours'.
void callOnce(ShellMode mode, int i) {
  const std::string number = std::to_string(i % 256);
  const ShellResult result =
      agent::runShellCommand(agent::kSh,
                             "echo " + number + " > /dev/null; " +
                                 (mode == ShellMode::Capture ? "echo " : "exit ") + number,
                             mode);
  ASSERT_EQ(result.status, mode == ShellMode::Status ? i % 256 : 0) << i;
  ASSERT_EQ(result.text, mode == ShellMode::Capture ? number + "\n" : "") << i;
}

class TenThousandCommands : public testing::TestWithParam<ShellMode> {};

TEST_P(TenThousandCommands, LeakNoDescriptorChildOrMemoryWhileSignalsArrive) {
  const Signals signals;
  for (int i = 0; i < kCallsToWarmUp; ++i) ASSERT_NO_FATAL_FAILURE(callOnce(GetParam(), i));
  const long descriptors = doubles::openDescriptors();
  const std::size_t bytes = bytesInUse();
  for (int i = 0; i < kCalls; ++i) ASSERT_NO_FATAL_FAILURE(callOnce(GetParam(), i));

  EXPECT_EQ(doubles::openDescriptors(), descriptors);
  EXPECT_TRUE(doubles::hasNoChild());
  EXPECT_LT(bytesInUse(), bytes + kCalls);  // not even one byte per call
  EXPECT_GE(alarms, 100);
  EXPECT_GE(childSignals, kCalls);
  std::printf("%zu bytes in use, then %zu; %d SIGALRM, %d SIGCHLD\n", bytes, bytesInUse(),
              int{alarms}, int{childSignals});
}

INSTANTIATE_TEST_SUITE_P(Modes, TenThousandCommands, testing::ValuesIn(doubles::kEveryMode),
                         [](const auto &mode) { return doubles::nameFor(mode.param); });

}  // namespace
