#include "settings/connectivity.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "doubles/recording_shell.h"

namespace {

struct ConnectionTestRow {
  std::function<bool()> run;
  const char *command;
};

TEST(ConnectionTest, QuotesTheServerLeavesThePortBareAndEscapesNothing) {
  const ConnectionTestRow rows[] = {
      {[] { return settings::answersPing("192.0.2.10"); }, "/sbin/ping -c 1 \"192.0.2.10\""},
      {[] { return settings::answersPing("a\"; b $c `d` \\e"); },
       "/sbin/ping -c 1 \"a\"; b $c `d` \\e\""},
      {[] { return settings::acceptsConnection("192.0.2.10", "6000"); },
       "/usr/bin/nc -vz \"192.0.2.10\" 6000"},
      {[] { return settings::acceptsConnection("a\"b", "+80"); }, "/usr/bin/nc -vz \"a\"b\" +80"},
  };
  for (const ConnectionTestRow &row : rows) {
    for (const int status : {0, 1, 2, 127}) {
      doubles::resetShell();
      doubles::recordingShell().answer = [status](const doubles::RecordedCommand &) {
        return agent::ShellResult{.text = {}, .status = status};
      };
      EXPECT_EQ(row.run(), status == 0);
      EXPECT_EQ(doubles::recordingShell().commands,
                (std::vector<doubles::RecordedCommand>{
                    {"/bin/sh", row.command, agent::ShellMode::Status}}));
    }
  }
}

}  // namespace
