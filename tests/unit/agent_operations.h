#pragma once

#include <functional>
#include <vector>

#include "agent/launchd_jobs.h"
#include "agent/mdm_profile.h"
#include "agent/settings_reset.h"

/// Every operation of agent/ that runs a command, for an administrator whose password no message
/// may show.
namespace operations {

inline constexpr const char *kSecret = "Horse-Battery";
inline const agent::Credentials kAdmin{.user = "bob", .pwd = kSecret};
inline const agent::ConsoleUser kConsole{.user = "alice", .uid = "501"};

inline const std::vector<std::function<void()>> kAll{
    [] { agent::getloggedInUser(); },
    [] { agent::getloggedInUID("alice"); },
    [] { agent::checkGlobalAgent(kConsole); },
    [] { agent::checkGlobalDaemon(kAdmin); },
    [] { agent::stopGlobalAgent(kConsole); },
    [] { agent::stopGlobalDaemon(kAdmin); },
    [] { agent::startGlobalAgent(kConsole, true); },
    [] { agent::startGlobalAgent(kConsole, false); },
    [] { agent::startGlobalDaemon(kAdmin); },
    [] { agent::checkMDMProfile("Zentavo", kAdmin); },
    [] { agent::deleteSettings("Zentavo", kAdmin, "safeguarding_server.xml"); },
    [] { agent::generateConfigFile("Zentavo"); },
};

}  // namespace operations
