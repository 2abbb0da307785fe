#include <gtest/gtest.h>

#include "agent/command_prefix.h"
#include "agent/launchd_jobs.h"
#include "agent/mdm_profile.h"
#include "agent/settings_reset.h"
#include "doubles/recording_shell.h"
#include "unit/expected_commands.h"

namespace {

using agent::ConsoleUser;
using agent::Credentials;
using agent::ShellMode;
using doubles::RecordedCommand;
using doubles::recordingShell;

const Credentials kAdmin{.user = "bob", .pwd = "s3cret"};
const ConsoleUser kConsole{.user = "alice", .uid = "501"};

class AgentCommands : public testing::Test {
 protected:
  void SetUp() override { doubles::resetShell(); }
  void TearDown() override { doubles::resetShell(); }

  static void answerStatus(int status) {
    recordingShell().answer = [status](const RecordedCommand &) {
      return agent::ShellResult{.text = {}, .status = status};
    };
  }
  static void answerText(const std::string &text) {
    recordingShell().answer = [text](const RecordedCommand &) {
      return agent::ShellResult{.text = text, .status = 0};
    };
  }
  static RecordedCommand onlyCommand() {
    EXPECT_EQ(recordingShell().commands.size(), 1U);
    return recordingShell().commands.empty() ? RecordedCommand{} : recordingShell().commands[0];
  }
  template <class Operation>
  static std::string printed(Operation operation) {
    testing::internal::CaptureStdout();
    operation();
    return testing::internal::GetCapturedStdout();
  }
};

TEST_F(AgentCommands, LookUpTheConsoleUserAndReturnTheOutputUnchanged) {
  answerText("alice\n");
  EXPECT_EQ(agent::getloggedInUser(), "alice\n");
  EXPECT_EQ(onlyCommand(),
            (RecordedCommand{"/bin/bash", expected::kLookUpUser, ShellMode::Capture}));
}

TEST_F(AgentCommands, LookUpTheUserIdOfAnyNameAndReturnTheOutputUnchanged) {
  answerText("id: 'a b': no such user\n\n");
  EXPECT_EQ(agent::getloggedInUID("a b"), "id: 'a b': no such user\n\n");
  EXPECT_EQ(onlyCommand(),
            (RecordedCommand{"/bin/bash", "loggedInUID=$(id -u \"a b\"); echo $loggedInUID",
                             ShellMode::Capture}));
}

TEST_F(AgentCommands, CheckTheUserAgentInTheConsoleUsersDomainWithTwoSpaces) {
  const RecordedCommand check{"/bin/bash", expected::kCheckAgent, ShellMode::Status};
  EXPECT_EQ(printed([] { EXPECT_TRUE(agent::checkGlobalAgent(kConsole)); }), "");
  EXPECT_EQ(onlyCommand(), check);
  for (const int status : {1, 113, 127, 9, -1}) {
    answerStatus(status);
    EXPECT_EQ(printed([] { EXPECT_FALSE(agent::checkGlobalAgent(kConsole)); }), "");
  }
}

TEST_F(AgentCommands, CheckTheDaemonAsRootWithOneSpace) {
  const RecordedCommand check{"/bin/bash", expected::kCheckDaemon, ShellMode::Status};
  EXPECT_EQ(printed([] { EXPECT_TRUE(agent::checkGlobalDaemon(kAdmin)); }), "");
  EXPECT_EQ(onlyCommand(), check);
  answerStatus(1);
  EXPECT_EQ(printed([] { EXPECT_FALSE(agent::checkGlobalDaemon(kAdmin)); }), "");
}

struct Change {
  const char *name;
  void (*run)();
  std::string command;
  const char *success, *failure;
};

const Change kChanges[] = {
    {"stopGlobalAgent", [] { agent::stopGlobalAgent(kConsole); }, expected::kStopAgent,
     "Global Agent stop successfully.\n", "Global Agent failed to stop.\n"},
    {"startGlobalAgent", [] { agent::startGlobalAgent(kConsole, true); }, expected::kStartAgent,
     "Global Agent starts successfully.\n", "Global Agent failed to start.\n"},
    {"stopGlobalDaemon", [] { agent::stopGlobalDaemon(kAdmin); }, expected::kStopDaemon,
     "Global Daemon stops successfully.\n", "Global Daemon failed to stop.\n"},
    {"startGlobalDaemon", [] { agent::startGlobalDaemon(kAdmin); }, expected::kStartDaemon,
     "Global Daemon starts successfully.\n", "Global Daemon failed to start.\n"},
};

TEST_F(AgentCommands, ChangeAJobByOneCommandAndPrintTheResult) {
  for (const Change &change : kChanges) {
    SCOPED_TRACE(change.name);
    doubles::resetShell();
    EXPECT_EQ(printed(change.run), change.success);
    EXPECT_EQ(onlyCommand(), (RecordedCommand{"/bin/bash", change.command, ShellMode::Status}));
    for (const int status : {1, 127, 15, -1}) {
      answerStatus(status);
      EXPECT_EQ(printed(change.run), change.failure);
    }
  }
}

TEST_F(AgentCommands, StartTheAgentWithoutWaitingAndPrintTheSameWhateverTheResult) {
  for (const int status : {0, 1}) {
    doubles::resetShell();
    answerStatus(status);
    EXPECT_EQ(printed([] { agent::startGlobalAgent(kConsole, false); }), "Global Agent started.\n");
    EXPECT_EQ(onlyCommand(),
              (RecordedCommand{"/bin/bash", expected::kStartAgent, ShellMode::LaunchOnly}));
  }
}

TEST(Prefixes, InsertValuesWithoutEscaping) {
  EXPECT_EQ(agent::asRoot({.user = "a\"$`\\", .pwd = " p\"$(x)`y`\\ "}, "cmd"),
            "/bin/echo \" p\"$(x)`y`\\ \" | /usr/bin/sudo -u \"a\"$`\\\" -S /usr/bin/sudo -S cmd");
  EXPECT_EQ(agent::asConsoleUser({.user = "John \"D\" Doe", .uid = "5; x"}, "cmd"),
            "/bin/launchctl asuser 5; x /usr/bin/sudo -u \"John \"D\" Doe\" cmd");
}

TEST(Prefixes, KeepEmptyValues) {
  EXPECT_EQ(agent::asRoot({}, "cmd"),
            "/bin/echo \"\" | /usr/bin/sudo -u \"\" -S /usr/bin/sudo -S cmd");
}

struct EditionRow {
  const char *oem, *folder, *identifier;
};

constexpr EditionRow kEditionRows[] = {
    {"Quorvix", "/Applications/Quorvix/QuorvixOskel", "com.quorvix.oskel.agent"},
    {"Zentavo", "/Applications/Zentavo/ZentavoVardex", "com.zentavo.vardex.agent"},
    {"Fennrow", "/Applications/Fennrow/FennrowLumar", "com.fennrow.lumar.agent"},
    {"Tollwick", "/Applications/Tollwick/TollwickOmbrel", "de.tollwick.ombrel.agent"},
    {"Unknown", "/Applications/Quorvix/QuorvixOskel", "com.quorvix.oskel.agent"},
    {"", "/Applications/Quorvix/QuorvixOskel", "com.quorvix.oskel.agent"},
};

TEST_F(AgentCommands, DeleteASettingsFileInTheEditionsFolderWithTwoSpaces) {
  for (const EditionRow &row : kEditionRows) {
    SCOPED_TRACE(row.oem);
    doubles::resetShell();
    answerStatus(1);
    EXPECT_EQ(printed([&] { agent::deleteSettings(row.oem, kAdmin, "safeguarding_server.xml"); }),
              "");
    EXPECT_EQ(onlyCommand(), (RecordedCommand{"/bin/bash",
                                              AS_ROOT "/bin/rm  " + std::string(row.folder) +
                                                  "/SystemAgent/settings/safeguarding_server.xml",
                                              ShellMode::WaitOnly}));
  }
}

TEST_F(AgentCommands, RegenerateTheDaemonsSettingsWithTheProgramsOwnRights) {
  for (const EditionRow &row : kEditionRows) {
    SCOPED_TRACE(row.oem);
    doubles::resetShell();
    answerStatus(127);
    const std::string folder = row.folder;
    EXPECT_EQ(printed([&] { agent::generateConfigFile(row.oem); }), "");
    EXPECT_EQ(
        onlyCommand(),
        (RecordedCommand{"/bin/bash",
                         "echo -n > " + folder + "/SystemAgent/settings/daemon.settings.xml; " +
                             folder + "/SystemAgent/SystemAgentDaemon daemon exit",
                         ShellMode::WaitOnly}));
  }
}

TEST_F(AgentCommands, ListProfilesWithAThirdSudoThroughSh) {
  for (const EditionRow &row : kEditionRows) {
    SCOPED_TRACE(row.oem);
    doubles::resetShell();
    EXPECT_FALSE(agent::checkMDMProfile(row.oem, kAdmin));
    EXPECT_EQ(onlyCommand(),
              (RecordedCommand{"/bin/sh",
                               AS_ROOT "/usr/bin/sudo /usr/bin/profiles list |  grep " +
                                   std::string(row.identifier),
                               ShellMode::Capture}));
  }
}

TEST_F(AgentCommands, FindTheProfileByAnExactSubstring) {
  struct {
    const char *listing;
    bool expected;
  } const cases[] = {
      {"", false},
      {"_computerlevel[1] attribute: profileIdentifier: com.zentavo.vardex.agent\n", true},
      {"profileIdentifier: com.zentavo.vardex.agent.beta\n", true},
      {"profileIdentifier: com.zentavo.vardex.agentless\n", true},
      {"profileIdentifier: comXzentavoXvardexXagent\n", false},
      {"profileIdentifier: COM.ZENTAVO.VARDEX.AGENT\n", false},
      {"profileIdentifier: com.quorvix.oskel.agent\n", false},
      {"Sorry, try again.\nsudo: 3 incorrect password attempts\n", false},
  };
  for (const auto &c : cases) {
    answerText(c.listing);
    EXPECT_EQ(agent::checkMDMProfile("Zentavo", kAdmin), c.expected) << c.listing;
  }
}

}  // namespace
