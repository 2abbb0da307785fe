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

TEST_F(AgentCommands, CheckAJobByOneCommandAndPrintNothing) {
  struct {
    bool (*run)();
    std::string command;
  } const checks[] = {
      {[] { return agent::checkGlobalAgent(kConsole); }, expected::kCheckAgent},
      {[] { return agent::checkGlobalDaemon(kAdmin); }, expected::kCheckDaemon},
  };
  for (const auto &check : checks) {
    for (const int status : {0, 1, 113, 127, 9, -1}) {
      doubles::resetShell();
      answerStatus(status);
      EXPECT_EQ(printed([&] { EXPECT_EQ(check.run(), status == 0); }), "");
      EXPECT_EQ(onlyCommand(), (RecordedCommand{"/bin/bash", check.command, ShellMode::Status}));
    }
  }
}

TEST_F(AgentCommands, ChangeAJobByOneCommandAndPrintTheResult) {
  struct {
    void (*run)();
    std::string command;
    const char *success, *failure;
  } const changes[] = {
      {[] { agent::stopGlobalAgent(kConsole); }, expected::kStopAgent,
       "Global Agent stop successfully.\n", "Global Agent failed to stop.\n"},
      {[] { agent::startGlobalAgent(kConsole, true); }, expected::kStartAgent,
       "Global Agent starts successfully.\n", "Global Agent failed to start.\n"},
      {[] { agent::stopGlobalDaemon(kAdmin); }, expected::kStopDaemon,
       "Global Daemon stops successfully.\n", "Global Daemon failed to stop.\n"},
      {[] { agent::startGlobalDaemon(kAdmin); }, expected::kStartDaemon,
       "Global Daemon starts successfully.\n", "Global Daemon failed to start.\n"},
  };
  for (const auto &change : changes) {
    for (const int status : {0, 1, 127, 15, -1}) {
      doubles::resetShell();
      answerStatus(status);
      EXPECT_EQ(printed(change.run), status == 0 ? change.success : change.failure);
      EXPECT_EQ(onlyCommand(), (RecordedCommand{"/bin/bash", change.command, ShellMode::Status}));
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
  EXPECT_EQ(agent::asRoot({}, "cmd"),
            "/bin/echo \"\" | /usr/bin/sudo -u \"\" -S /usr/bin/sudo -S cmd");
  EXPECT_EQ(agent::asConsoleUser({.user = "John \"D\" Doe", .uid = "5; x"}, "cmd"),
            "/bin/launchctl asuser 5; x /usr/bin/sudo -u \"John \"D\" Doe\" cmd");
}

TEST_F(AgentCommands, ConcernTheFolderAndTheProfileOfTheirEdition) {
  struct {
    const char *oem, *folder, *identifier;
  } const editions[] = {
      {"Quorvix", "/Applications/Quorvix/QuorvixOskel", "com.quorvix.oskel.agent"},
      {"Zentavo", "/Applications/Zentavo/ZentavoVardex", "com.zentavo.vardex.agent"},
      {"Fennrow", "/Applications/Fennrow/FennrowLumar", "com.fennrow.lumar.agent"},
      {"Tollwick", "/Applications/Tollwick/TollwickOmbrel", "de.tollwick.ombrel.agent"},
      {"Unknown", "/Applications/Quorvix/QuorvixOskel", "com.quorvix.oskel.agent"},
      {"", "/Applications/Quorvix/QuorvixOskel", "com.quorvix.oskel.agent"},
  };
  for (const auto &[oem, folder, identifier] : editions) {
    SCOPED_TRACE(oem);
    doubles::resetShell();
    answerStatus(1);  // which nobody looks at
    EXPECT_EQ(printed([oem = oem] {
                agent::deleteSettings(oem, kAdmin, "safeguarding_server.xml");
                agent::generateConfigFile(oem);
                EXPECT_FALSE(agent::checkMDMProfile(oem, kAdmin));
              }),
              "");
    const std::string systemAgent = folder + std::string("/SystemAgent/");
    EXPECT_EQ(
        recordingShell().commands,
        (std::vector<RecordedCommand>{
            {"/bin/bash", AS_ROOT "/bin/rm  " + systemAgent + "settings/safeguarding_server.xml",
             ShellMode::WaitOnly},
            {"/bin/bash",
             "echo -n > " + systemAgent + "settings/daemon.settings.xml; " + systemAgent +
                 "SystemAgentDaemon daemon exit",
             ShellMode::WaitOnly},
            {"/bin/sh",
             std::string(AS_ROOT "/usr/bin/sudo /usr/bin/profiles list |  grep ") + identifier,
             ShellMode::Capture}}));
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
