#include "settings/apply_workflow.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <csignal>

#include "agent/server_plist.h"
#include "app/diagnostics.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"
#include "doubles/scratch_folder.h"
#include "unit/expected_commands.h"

namespace {

using doubles::RecordedCommand;
using doubles::recordingShell;
using doubles::ScratchFolder;
using Lines = std::vector<std::string>;

using namespace expected;

/// What an ordinary Apply runs when both jobs are loaded and the console user is given.
const Lines kRestart{kCheckAgent,  kStopAgent,   kCheckDaemon, kStopDaemon,
                     kCheckDaemon, kStartDaemon, kCheckAgent,  kStartAgent};

/// Simulates launchd with two jobs, whose stop or start can be made to fail.
class Apply : public testing::Test {
 protected:
  void SetUp() override {
    doubles::resetShell();
    doubles::setServerPlistPath(path_);
    recordingShell().answer = [this](const RecordedCommand &command) { return answer(command); };
  }
  void TearDown() override {
    doubles::resetShell();
    doubles::setServerPlistPath(std::nullopt);
  }

  agent::ShellResult answer(const RecordedCommand &command) {
    const std::string &line = command.command;
    fileAtCommand_.push_back(std::filesystem::exists(path_));
    if (line == kLookUpUser) return {.text = "\nal\nice\n\n", .status = 0};
    if (line == kLookUpUID) return {.text = "5\n01\n\n", .status = 0};
    if (line == kCheckAgent) return {.text = {}, .status = agentLoaded_ ? 0 : 113};
    if (line == kCheckDaemon) return {.text = {}, .status = daemonLoaded_ ? 0 : 113};
    const bool stops = line == kStopAgent || line == kStopDaemon;
    const bool starts = line == kStartAgent || line == kStartDaemon;
    if ((stops && stopsFail_) || (starts && startsFail_)) return {.text = {}, .status = 1};
    if (line == kStopAgent) agentLoaded_ = false;
    if (line == kStartAgent) agentLoaded_ = true;
    if (line == kStopDaemon) daemonLoaded_ = false;
    if (line == kStartDaemon) daemonLoaded_ = true;
    return {};
  }

  Lines apply() {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    outcome_ = settings::applySettings(request_);
    printed_ = testing::internal::GetCapturedStdout();
    errors_ = testing::internal::GetCapturedStderr();
    return recordingShell().commandLines();
  }

  settings::ApplyRequest request_{.oem = "Zentavo",
                                  .server = "192.0.2.10",
                                  .port = "6000",
                                  .language = "fr",
                                  .profile = false,
                                  .reset_settings = false,
                                  .administrator = {.user = "bob", .pwd = "s3cret"},
                                  .consoleUser = agent::ConsoleUser{.user = "alice", .uid = "501"}};
  bool agentLoaded_ = true;
  bool daemonLoaded_ = true;
  bool stopsFail_ = false;
  bool startsFail_ = false;
  settings::ApplyOutcome outcome_;
  std::vector<bool> fileAtCommand_;
  std::string printed_;
  std::string errors_;
  ScratchFolder folder_;
  std::string path_ = folder_.file("server.plist");
};

TEST_F(Apply, StopsTheAgentFirstAndStartsItLast) {
  EXPECT_EQ(apply(), kRestart);
  EXPECT_EQ(printed_,
            "USER=alice uid=501\n"
            "Global Agent stop successfully.\n"
            "Global Daemon stops successfully.\n"
            "Global Daemon starts successfully.\n"
            "Global Agent starts successfully.\n");
  EXPECT_EQ(errors_, "");
  EXPECT_TRUE(!outcome_.write && outcome_.daemonStarted && outcome_.agentStarted);
}

TEST_F(Apply, WritesTheFileBetweenTheStopsAndTheStarts) {
  apply();
  EXPECT_EQ(fileAtCommand_,
            (std::vector<bool>{false, false, false, false, true, true, true, true}));
  EXPECT_EQ(ScratchFolder::read(path_),
            agent::serverPlistText({.server = "192.0.2.10", .port = "6000", .lang = "fr"}));
}

TEST_F(Apply, LooksUpTheConsoleUserWhenNoneIsGivenAndRemovesEveryNewline) {
  request_.consoleUser.reset();
  EXPECT_EQ(apply(), (Lines{kLookUpUser, kLookUpUID, kCheckAgent, kStopAgent, kCheckDaemon,
                            kStopDaemon, kCheckDaemon, kStartDaemon, kCheckAgent, kStartAgent}));
  EXPECT_TRUE(printed_.starts_with("USER=alice uid=501\n")) << printed_;
}

TEST_F(Apply, UsesAGivenConsoleUserUnchanged) {
  request_.consoleUser = agent::ConsoleUser{.user = " x\n", .uid = "abc"};
  const Lines lines = apply();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.front(),
            "/bin/launchctl asuser abc /usr/bin/sudo -u \" x\n\" /bin/launchctl list "
            "com.quorvix.SystemAgentUX  &> /dev/null");
  EXPECT_TRUE(printed_.starts_with("USER= x\n uid=abc\n")) << printed_;
}

TEST_F(Apply, LeavesThePerUserJobAloneWhenNobodyIsAtTheConsole) {
  request_.nobodyAtConsole = true;
  EXPECT_EQ(apply(), (Lines{kCheckDaemon, kStopDaemon, kCheckDaemon, kStartDaemon}));
  EXPECT_EQ(printed_, "Global Daemon stops successfully.\nGlobal Daemon starts successfully.\n");
  EXPECT_TRUE(outcome_.daemonStarted);
  EXPECT_FALSE(outcome_.agentStarted);
}

TEST_F(Apply, SkipsStoppingJobsThatAreNotLoadedAndStartsBoth) {
  agentLoaded_ = daemonLoaded_ = false;
  EXPECT_EQ(apply(), (Lines{kCheckAgent, kCheckDaemon, kCheckDaemon, kStartDaemon, kCheckAgent,
                            kStartAgent}));
  EXPECT_EQ(fileAtCommand_, (std::vector<bool>{false, false, true, true, true, true}));
}

TEST_F(Apply, ResetsTheSettingsAfterTheFileAndBeforeTheStarts) {
  request_.reset_settings = true;
  EXPECT_EQ(apply(), (Lines{kCheckAgent, kStopAgent, kCheckDaemon, kStopDaemon,
                            kDeleteServerSettings, kDeleteProtocolSettings, kDeleteCloudSettings,
                            kGenerate, kCheckDaemon, kStartDaemon, kCheckAgent, kStartAgent}));
  EXPECT_FALSE(fileAtCommand_[3]);
  EXPECT_TRUE(fileAtCommand_[4]);
}

TEST_F(Apply, DoesNotStartAJobThatFailedToStop) {
  stopsFail_ = true;
  EXPECT_EQ(apply(),
            (Lines{kCheckAgent, kStopAgent, kCheckDaemon, kStopDaemon, kCheckDaemon, kCheckAgent}));
  EXPECT_EQ(printed_,
            "USER=alice uid=501\nGlobal Agent failed to stop.\nGlobal Daemon failed to stop.\n");
  EXPECT_TRUE(std::filesystem::exists(path_));
  EXPECT_FALSE(outcome_.daemonStarted || outcome_.agentStarted);
}

TEST_F(Apply, ContinuesWhenStartsFail) {
  startsFail_ = true;
  EXPECT_EQ(apply(), kRestart);
  EXPECT_TRUE(printed_.ends_with("Global Daemon failed to start.\nGlobal Agent failed to start.\n"))
      << printed_;
}

TEST_F(Apply, ContinuesWhenTheFileCannotBeWritten) {
  doubles::setServerPlistPath(folder_.file("missing/server.plist"));
  EXPECT_EQ(apply(), kRestart);
  EXPECT_NE(errors_.find("unable to write in "), std::string::npos) << errors_;
  EXPECT_EQ(outcome_.write, std::errc::no_such_file_or_directory);
  EXPECT_TRUE(printed_.ends_with("Global Agent starts successfully.\n")) << printed_;
}

/// Ends the process with the number of commands that ran.
[[noreturn]] void applyWithoutAReaderOfTheOutput(const settings::ApplyRequest &request) {
  std::signal(SIGPIPE, SIG_DFL);
  app::ignoreBrokenPipes();
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) ::_exit(99);
  ::close(ends[0]);
  ::dup2(ends[1], STDOUT_FILENO);
  settings::applySettings(request);
  ::_exit(static_cast<int>(recordingShell().commands.size()));
}

using ApplyDeathTest = Apply;

TEST_F(ApplyDeathTest, RunsToTheLastCommandWhenTheReaderOfItsOutputIsGone) {
  EXPECT_EXIT(applyWithoutAReaderOfTheOutput(request_), testing::ExitedWithCode(8), "");
}

TEST(ConsoleUserArguments, AreTakenOnlyWhenThereAreExactlyTwo) {
  using settings::consoleUserFromArguments;
  for (const Lines &arguments :
       {Lines{}, {"program"}, {"program", "alice"}, {"program", "alice", "501", "more"}}) {
    EXPECT_FALSE(consoleUserFromArguments(arguments)) << arguments.size();
  }
  const auto user = consoleUserFromArguments({"program", " alice", ""});
  ASSERT_TRUE(user);
  EXPECT_EQ(user->user, " alice");
  EXPECT_EQ(user->uid, "");
}

}  // namespace
