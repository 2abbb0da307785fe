#include "agent/shell.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <thread>
#include <tuple>

#include "agent/utf8.h"
#include "app/diagnostics.h"
#include "doubles/scratch_folder.h"

namespace {

using agent::runShellCommand;
using agent::ShellMode;
using agent::ShellOutcome;
using doubles::ScratchFolder;

std::string capture(const std::string &command) {
  return runShellCommand(agent::kBash, command, ShellMode::Capture).text;
}

int status(const std::string &command) {
  return runShellCommand(agent::kBash, command, ShellMode::Status).status;
}

/// Polls for something that another process does.
bool becomesTrue(const std::function<bool()> &condition) {
  for (int i = 0; i < 500; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

bool hasNoChild() { return ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD; }

std::size_t openDescriptors() {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/dev/fd"),
                                                std::filesystem::directory_iterator()));
}

TEST(CaptureMode, ReturnsBothStreamsInTheOrderWrittenWithTheNewline) {
  EXPECT_EQ(capture("echo one; echo two >&2; echo three"), "one\ntwo\nthree\n");
}

TEST(CaptureMode, ReturnsTheEmptyStringWhenNothingIsPrinted) {
  EXPECT_EQ(capture("true"), "");
  EXPECT_EQ(capture("exit 3"), "");
}

TEST(CaptureMode, IgnoresTheStatusAndKeepsEveryCharacter) {
  EXPECT_EQ(capture("printf ' caf\\xc3\\xa9 \\t'; exit 7"), " caf\xC3\xA9 \t");
}

TEST(CaptureMode, ReturnsAsMuchAsAPipeHolds) {
  EXPECT_EQ(capture("head -c 60000 /dev/zero | tr '\\0' x").size(), 60000U);
}

TEST(CaptureModeDeathTest, StopsTheProgramWhenTheOutputIsNotUTF8) {
  EXPECT_EXIT(capture("printf '\\xff'"), testing::KilledBySignal(SIGABRT),
              "^fatal error: output of /bin/bash is not UTF-8\n$");
  EXPECT_EXIT(std::ignore = runShellCommand(agent::kSh, "printf '\\377'", ShellMode::Capture),
              testing::KilledBySignal(SIGABRT), "^fatal error: output of /bin/sh is not UTF-8\n$");
}

TEST(StatusMode, ReturnsTheExitStatus) {
  for (const int code : {0, 1, 7, 113, 127, 255}) {
    EXPECT_EQ(status("exit " + std::to_string(code)), code);
  }
}

TEST(StatusMode, ReturnsTheSignalThatEndedTheShell) {
  EXPECT_EQ(status("kill -TERM $$"), SIGTERM);
  EXPECT_EQ(status("kill -KILL $$"), SIGKILL);
}

TEST(StatusMode, SendsTheOutputToTheProgramsOwnStreams) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(status("echo out; echo err >&2"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "out\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "err\n");
}

TEST(StatusMode, KeepsTheOrderOfStatusMessagesAndOutput) {
  testing::internal::CaptureStdout();
  app::printLine("first");
  EXPECT_EQ(status("echo second"), 0);
  app::printLine("third");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "first\nsecond\nthird\n");
}

TEST(WaitOnlyMode, WaitsAndReturnsNothing) {
  const ScratchFolder folder;
  const std::string file = folder.file("done");
  const auto result =
      runShellCommand(agent::kBash, "sleep 0.2; touch '" + file + "'; exit 5", ShellMode::WaitOnly);
  EXPECT_TRUE(std::filesystem::exists(file));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, "");
}

TEST(LaunchOnlyMode, DoesNotWaitAndLeavesNoChildProcess) {
  const ScratchFolder folder;
  const std::string go = folder.file("go");
  const std::string done = folder.file("done");
  std::ignore = runShellCommand(
      agent::kBash, "until [ -e '" + go + "' ]; do sleep 0.01; done; touch '" + done + "'",
      ShellMode::LaunchOnly);
  EXPECT_FALSE(std::filesystem::exists(done));
  EXPECT_TRUE(hasNoChild());
  folder.write("go", "");
  EXPECT_TRUE(becomesTrue([&] { return std::filesystem::exists(done); }));
}

TEST(Shell, GetsTheCommandAsOneArgumentOfDashC) {
  EXPECT_EQ(capture("echo \"$0|$#\""), "/bin/bash|0\n");
  EXPECT_EQ(runShellCommand(agent::kSh, "echo \"$0\"", ShellMode::Capture).text, "/bin/sh\n");
  EXPECT_EQ(capture("echo 'a  b' \"c\" | cat"), "a  b c\n");
  // Only bash redirects both streams with "&>".
  EXPECT_EQ(capture("{ echo one; echo two >&2; } &> /dev/null; echo end"), "end\n");
}

TEST(Shell, InheritsStandardInput) {
  const ScratchFolder folder;
  const int input = ::open(folder.write("input", "typed\n").c_str(), O_RDONLY);
  const int saved = ::dup(STDIN_FILENO);
  ::dup2(input, STDIN_FILENO);
  EXPECT_EQ(capture("cat"), "typed\n");
  ::dup2(saved, STDIN_FILENO);
  ::close(saved);
  ::close(input);
}

TEST(Shell, InheritsOnlyTheThreeStandardStreams) {
  const int leaked = ::open("/dev/null", O_RDONLY);
  ASSERT_GT(leaked, 2);
  const std::string list = "for fd in /dev/fd/*; do [ -e $fd ] && echo -n \"${fd##*/} \"; done";
  EXPECT_EQ(capture(list), "0 1 2 ");
  ::close(leaked);
}

TEST(Shell, GetsDefaultSignalHandlingAndAnEmptyMask) {
  const auto before = ::signal(SIGTERM, SIG_IGN);
  sigset_t term, old;
  sigemptyset(&term);  // macros on macOS, so without "::"
  sigaddset(&term, SIGTERM);
  ::sigprocmask(SIG_BLOCK, &term, &old);
  EXPECT_EQ(status("kill -TERM $$; exit 0"), SIGTERM);
  ::sigprocmask(SIG_SETMASK, &old, nullptr);
  ::signal(SIGTERM, before);
}

TEST(Shell, IsEndedByABrokenPipeThoughTheProgramIsNot) {
  const auto before = std::signal(SIGPIPE, SIG_DFL);
  app::ignoreBrokenPipes();
  EXPECT_EQ(status("kill -PIPE $$; exit 0"), SIGPIPE);
  std::signal(SIGPIPE, before);
}

TEST(Shell, IsWaitedForEvenWhenSignalsArrive) {
  static volatile sig_atomic_t alarms;
  alarms = 0;
  struct sigaction action {
  }, before{};
  action.sa_handler = [](int) { alarms = alarms + 1; };
  ::sigaction(SIGALRM, &action, &before);
  const itimerval often{.it_interval = {0, 20000}, .it_value = {0, 20000}};
  const itimerval never{};
  ::setitimer(ITIMER_REAL, &often, nullptr);
  EXPECT_EQ(status("sleep 0.3; exit 9"), 9);
  EXPECT_EQ(capture("sleep 0.3; echo late"), "late\n");
  ::setitimer(ITIMER_REAL, &never, nullptr);
  ::sigaction(SIGALRM, &before, nullptr);
  EXPECT_GE(alarms, 10);
}

TEST(Shell, KeepsItsStatusWhenTheProgramWasStartedWithSIGCHLDIgnored) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(status("exit 6"), 6);
  ::signal(SIGCHLD, before);
}

TEST(Shell, LeavesNoDescriptorAndNoChildInAnyMode) {
  capture("true");
  const std::size_t before = openDescriptors();
  for (int i = 0; i < 50; ++i) {
    capture("echo");
    status("true");
    for (const ShellMode mode : {ShellMode::WaitOnly, ShellMode::LaunchOnly}) {
      EXPECT_EQ(runShellCommand(agent::kBash, "true", mode).outcome, ShellOutcome::Done);
    }
  }
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_TRUE(hasNoChild());
}

TEST(MissingShell, IsReportedAndGivesStatus127AndNoText) {
  for (const ShellMode mode :
       {ShellMode::Capture, ShellMode::Status, ShellMode::WaitOnly, ShellMode::LaunchOnly}) {
    testing::internal::CaptureStderr();
    const auto result = runShellCommand("/nowhere/sh", "true", mode);
    const std::string line = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(
        line.ends_with(" unable to run /nowhere/sh: posix_spawn: No such file or directory\n"))
        << line;
    EXPECT_EQ(result.outcome, ShellOutcome::NotStarted);
    EXPECT_EQ(result.status, 127);
    EXPECT_EQ(result.text, "");
  }
  EXPECT_TRUE(hasNoChild());
}

TEST(UTF8, IsWellFormedOnlyWithoutOverlongFormsSurrogatesAndHigherValues) {
  const char *good[] = {"",
                        "abc",
                        "\x7F",
                        "\xC2\x80",
                        "\xDF\xBF",
                        "\xE0\xA0\x80",
                        "\xED\x9F\xBF",
                        "\xEE\x80\x80",
                        "\xEF\xBF\xBF",
                        "\xF0\x90\x80\x80",
                        "\xF4\x8F\xBF\xBF"};
  for (const char *text : good) EXPECT_TRUE(agent::isUtf8(text)) << text;
  EXPECT_TRUE(agent::isUtf8(std::string_view("a\0b", 3)));
  const char *bad[] = {"\x80",
                       "\xBF",
                       "\xC0\x80",
                       "\xC1\xBF",
                       "\xC2",
                       "\xC2\x41",
                       "\xE0\x9F\xBF",
                       "\xED\xA0\x80",
                       "\xED\xBF\xBF",
                       "\xE1\x80",
                       "\xF0\x8F\xBF\xBF",
                       "\xF4\x90\x80\x80",
                       "\xF5\x80\x80\x80",
                       "\xFF",
                       "abc\xFE",
                       "\xF0\x90\x80",
                       "\xE1\x80\x41"};
  for (const char *text : bad) EXPECT_FALSE(agent::isUtf8(text)) << testing::PrintToString(text);
}

}  // namespace
