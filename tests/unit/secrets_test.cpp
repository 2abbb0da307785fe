// The administrator's password is part of many command lines, but of no message.

#include <gtest/gtest.h>

#include <algorithm>

#include "agent/command_prefix.h"
#include "agent/launchd_jobs.h"
#include "agent/mdm_profile.h"
#include "agent/server_plist.h"
#include "agent/settings_reset.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"

namespace {

using agent::ShellResult;
using doubles::recordingShell;

constexpr const char *kSecret = "Horse-Battery";
const agent::Credentials kAdmin{.user = "bob", .pwd = kSecret};
const agent::ConsoleUser kConsole{.user = "alice", .uid = "501"};

void runEveryOperation() {
  agent::getloggedInUser();
  agent::getloggedInUID("alice");
  agent::checkGlobalAgent(kConsole);
  agent::checkGlobalDaemon(kAdmin);
  agent::stopGlobalAgent(kConsole);
  agent::stopGlobalDaemon(kAdmin);
  agent::startGlobalAgent(kConsole, true);
  agent::startGlobalAgent(kConsole, false);
  agent::startGlobalDaemon(kAdmin);
  agent::checkMDMProfile("Zentavo", kAdmin);
  agent::deleteSettings("Zentavo", kAdmin, "safeguarding_server.xml");
  agent::generateConfigFile("Zentavo");
  agent::generateServerPlistFile({.server = "mdm", .port = "6000", .lang = "en"});
}

TEST(Secrets, AreInNoMessageWhateverTheResultOfTheCommands) {
  doubles::setServerPlistPath("/nowhere/server.plist");
  for (const int status : {0, 1, 9, 127}) {
    doubles::resetShell();
    recordingShell().answer = [&](const doubles::RecordedCommand &) {
      return ShellResult{.text = "x", .status = status};
    };
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    runEveryOperation();
    const std::string output =
        testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
    EXPECT_EQ(output.find(kSecret), std::string::npos) << output;
    // There were messages to search, and commands with the password.
    EXPECT_EQ(std::ranges::count(output, '\n'), 6) << output;
    EXPECT_EQ(std::ranges::count_if(
                  recordingShell().commandLines(),
                  [](const std::string &line) { return line.find(kSecret) != std::string::npos; }),
              5);
  }
  doubles::resetShell();
  doubles::setServerPlistPath(std::nullopt);
}

}  // namespace
