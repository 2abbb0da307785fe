#include <gtest/gtest.h>

#include "agent/shell.h"
#include "cli/process.h"
#include "doubles/environment_variable.h"
#include "doubles/scratch_folder.h"

namespace {

TEST(SystemCommands, AreTheSystemsOwnWhateverTheCallersEnvironmentSays) {
  const doubles::ScratchFolder folder;
  const std::string startup = folder.write("startup", "echo startup");
  const doubles::EnvironmentVariable variables[] = {{"PATH", folder.path().c_str()},
                                                    {"BASH_ENV", startup.c_str()},
                                                    {"SHELLOPTS", "xtrace"},
                                                    {"BASH_FUNC_id%%", "() { echo function; }"},
                                                    {"KEPT", "a value with = and ()"}};
  cli::useSystemCommands();
  EXPECT_EQ(agent::runShellCommand(agent::kBash, "type -t id; echo $PATH:$KEPT",
                                   agent::ShellMode::Capture)
                .text,
            "file\n/usr/bin:/bin:/usr/sbin:/sbin:a value with = and ()\n");
}

}  // namespace
