#include "app/logged_in_user.h"

#include "agent/shell.h"

namespace app {

std::string getloggedInUser() {
  return agent::runShellCommand(agent::kBash,
                                "loggedInUser=$(stat -f%Su /dev/console); echo $loggedInUser",
                                agent::ShellMode::Capture)
      .text;
}

}  // namespace app
