// The administrator's password is part of many command lines, but of no message.

#include <gtest/gtest.h>

#include <algorithm>

#include "agent/server_plist.h"
#include "doubles/fake_server_plist_path.h"
#include "doubles/recording_shell.h"
#include "unit/agent_operations.h"

namespace {

using doubles::recordingShell;
using operations::kSecret;

TEST(Secrets, AreInNoMessageWhateverTheResultOfTheCommands) {
  doubles::setServerPlistPath("/nowhere/server.plist");
  for (const int status : {0, 1, 9, 127}) {
    doubles::resetShell();
    recordingShell().answer = [&](const doubles::RecordedCommand &) {
      return agent::ShellResult{.text = "x", .status = status};
    };
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    for (const auto &operation : operations::kAll) operation();
    agent::generateServerPlistFile({.server = "mdm", .port = "6000", .lang = "en"});
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
