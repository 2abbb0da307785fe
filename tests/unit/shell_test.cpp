#include "agent/shell.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

#include "agent/utf8.h"
#include "app/diagnostics.h"
#include "doubles/process_state.h"
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

TEST(CaptureMode, ReturnsBothStreamsUnchangedWhateverTheStatus) {
  EXPECT_EQ(capture("echo one; echo two >&2; echo three"), "one\ntwo\nthree\n");
  EXPECT_EQ(capture("printf ' caf\\xc3\\xa9 \\t'; exit 7"), " caf\xC3\xA9 \t");
  EXPECT_EQ(capture("exit 3"), "");
}

TEST(CaptureMode, ReturnsAsMuchAsEveryPipeHolds) {
  EXPECT_EQ(capture("head -c 16000 /dev/zero | tr '\\0' x").size(), 16000U);
}

TEST(CaptureModeDeathTest, StopsTheProgramWhenTheOutputIsNotUTF8) {
  EXPECT_EXIT(capture("printf '\\xff'"), testing::KilledBySignal(SIGABRT),
              "^fatal error: output of /bin/bash is not UTF-8\n$");
  EXPECT_EXIT(std::ignore = runShellCommand(agent::kSh, "printf '\\377'", ShellMode::Capture),
              testing::KilledBySignal(SIGABRT), "^fatal error: output of /bin/sh is not UTF-8\n$");
}

TEST(StatusMode, ReturnsTheExitStatusOrTheSignalThatEndedTheShell) {
  for (const int code : {0, 1, 7, 113, 127, 255}) {
    EXPECT_EQ(status("exit " + std::to_string(code)), code);
  }
  EXPECT_EQ(status("kill -KILL $$"), SIGKILL);
}

TEST(StatusMode, SendsTheOutputToTheProgramsOwnStreamsInOrderWithItsStatusMessages) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  app::printLine("first");
  EXPECT_EQ(status("echo second; echo error >&2"), 0);
  app::printLine("third");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "first\nsecond\nthird\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error\n");
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
  for (const char *fifo : {"in", "out"}) ASSERT_EQ(::mkfifo(folder.file(fifo).c_str(), 0600), 0);
  const std::string command = "cat < '" + folder.file("in") + "' > '" + folder.file("out") + "'";
  ASSERT_EQ(runShellCommand(agent::kBash, command, ShellMode::LaunchOnly).outcome,
            ShellOutcome::Done);
  EXPECT_TRUE(doubles::hasNoChild());
  folder.write("in", "passed on");
  EXPECT_EQ(ScratchFolder::read(folder.file("out")), "passed on");
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
  for (const auto &[number, name] : {std::pair(SIGTERM, "TERM"), {SIGPIPE, "PIPE"}}) {
    const auto before = ::signal(number, SIG_IGN);
    sigset_t blocked, old;
    sigemptyset(&blocked);  // macros on macOS, so without "::"
    sigaddset(&blocked, number);
    ::sigprocmask(SIG_BLOCK, &blocked, &old);
    EXPECT_EQ(status(std::string("kill -") + name + " $$; exit 0"), number);
    ::sigprocmask(SIG_SETMASK, &old, nullptr);
    ::signal(number, before);
  }
}

TEST(Shell, KeepsItsStatusWhenTheProgramWasStartedWithSIGCHLDIgnored) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(status("exit 6"), 6);
  ::signal(SIGCHLD, before);
}

TEST(MissingShell, IsReportedAndGivesStatus127AndNoText) {
  for (const ShellMode mode : doubles::kEveryMode) {
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
  EXPECT_TRUE(doubles::hasNoChild());
}

TEST(UTF8, IsWellFormedOnlyWithoutOverlongFormsSurrogatesAndHigherValues) {
  for (const char *text :
       {"", "abc", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(agent::isUtf8(text)) << text;
  }
  EXPECT_TRUE(agent::isUtf8(std::string_view("a\0b", 3)));
  for (const char *text :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xED\xA0\x80",
        "\xED\xBF\xBF", "\xE1\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80",
        "\xFF", "abc\xFE", "\xF0\x90\x80", "\xE1\x80\x41"}) {
    EXPECT_FALSE(agent::isUtf8(text)) << testing::PrintToString(text);
  }
}

}  // namespace
