#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/observation.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"
#include "doubles/scratch_folder.h"
#include "unit/expected_commands.h"

namespace {

using doubles::RecordedCommand;
using doubles::recordingShell;

using expected::kCheckAgent;
using expected::kLookUpUID;
using expected::kLookUpUser;

const std::string kCheckDaemon =
    "/bin/echo \"\" | /usr/bin/sudo -u \"root\" -S /usr/bin/sudo -S "
    "/bin/launchctl list com.quorvix.SystemAgentDaemon &> /dev/null";

class Observation : public testing::Test {
 protected:
  void SetUp() override {
    doubles::resetShell();
    doubles::setServerPlistPath(scratch_.file("server.plist"));
    recordingShell().answer = [this](const RecordedCommand &command) -> agent::ShellResult {
      if (command.command == kLookUpUser) return {.text = owner_ + "\n", .status = 0};
      if (command.command.starts_with("loggedInUID=")) return {.text = uid_ + "\n", .status = 0};
      if (command.command == kCheckAgent) return {.text = {}, .status = agentStatus_};
      if (command.command == kCheckDaemon) return {.text = {}, .status = daemonStatus_};
      return {.text = {}, .status = 1};
    };
  }
  void TearDown() override {
    doubles::resetShell();
    doubles::setServerPlistPath(std::nullopt);
  }

  std::string owner_ = "alice";
  std::string uid_ = "501";
  int agentStatus_ = 0;
  int daemonStatus_ = 0;
  doubles::ScratchFolder scratch_;
};

TEST_F(Observation, FindsTheUserAtTheConsole) {
  const cli::Console console = cli::findConsole();
  EXPECT_EQ(console.user.user, "alice");
  EXPECT_EQ(console.user.uid, "501");
  EXPECT_FALSE(console.isUnknown);
  EXPECT_EQ(recordingShell().commandLines(), (std::vector<std::string>{kLookUpUser, kLookUpUID}));
}

TEST_F(Observation, LooksUpNoIdWhileTheLoginWindowIsShownOrForANameThatTheShellWouldInterpret) {
  struct {
    const char *owner;
    bool isUnknown;
  } const rows[] = {{"", false},      {"root", false}, {"_windowserver", false}, {"a\"b", true},
                    {"a$(id)", true}, {"a`id`", true}, {"a\\b", true},           {"a\tb", true}};
  for (const auto &row : rows) {
    recordingShell().commands.clear();
    owner_ = row.owner;
    const cli::Console console = cli::findConsole();
    EXPECT_EQ(console.user.user, "") << row.owner;
    EXPECT_EQ(console.isUnknown, row.isUnknown) << row.owner;
    EXPECT_EQ(recordingShell().commands.size(), 1U) << row.owner;
  }
}

TEST_F(Observation, DoesNotTakeAMessageForAUserId) {
  for (const char *uid : {"", "id: 'alice': no such user", "501 ", "-1"}) {
    uid_ = uid;
    EXPECT_EQ(cli::findConsole().user.user, "") << uid;
    EXPECT_TRUE(cli::findConsole().isUnknown) << uid;
  }
}

TEST_F(Observation, ReadsTheFileAndAsksForBothJobs) {
  scratch_.write("server.plist",
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                 "<key>server</key><string>mdm</string></dict></plist>");
  agentStatus_ = 113;
  const cli::State state = cli::observe({.user = {.user = "alice", .uid = "501"}});
  EXPECT_EQ(state.stored.server, "mdm");
  EXPECT_TRUE(state.daemonLoaded);
  EXPECT_EQ(state.agentLoaded, false);
  EXPECT_EQ(state.consoleUser, "alice");
  EXPECT_FALSE(state.consoleUserUnknown || state.unfinished);
  EXPECT_EQ(recordingShell().commandLines(), (std::vector<std::string>{kCheckDaemon, kCheckAgent}));
}

TEST_F(Observation, AsksForNoPerUserJobWithoutAUser) {
  daemonStatus_ = 113;
  const cli::State state = cli::observe({.user = {}, .isUnknown = true});
  EXPECT_FALSE(state.daemonLoaded);
  EXPECT_EQ(state.agentLoaded, std::nullopt);
  EXPECT_TRUE(state.consoleUserUnknown);
  EXPECT_EQ(recordingShell().commandLines(), (std::vector<std::string>{kCheckDaemon}));
}

}  // namespace
