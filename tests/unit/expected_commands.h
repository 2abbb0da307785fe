#pragma once

#include <string>

/// The exact command lines for administrator "bob" with password "s3cret", console user "alice"
/// with id 501, and the Zentavo edition.
namespace expected {

#define AS_ROOT "/bin/echo \"s3cret\" | /usr/bin/sudo -u \"bob\" -S /usr/bin/sudo -S "
#define AS_ALICE "/bin/launchctl asuser 501 /usr/bin/sudo -u \"alice\" "
#define AGENT_JOB "/Library/LaunchAgents/com.quorvix.SystemAgentUX.plist"
#define DAEMON_JOB "/Library/LaunchDaemons/com.quorvix.SystemAgentDaemon.plist"
#define SYSTEM_AGENT "/Applications/Zentavo/ZentavoVardex/SystemAgent/"

inline const std::string kLookUpUser =
    "loggedInUser=$(stat -f%Su /dev/console 2> /dev/null); echo $loggedInUser";
inline const std::string kLookUpUID = "loggedInUID=$(id -u \"alice\"); echo $loggedInUID";

inline const std::string kCheckAgent =
    AS_ALICE "/bin/launchctl list com.quorvix.SystemAgentUX  &> /dev/null";
inline const std::string kStopAgent = AS_ALICE "/bin/launchctl unload -w " AGENT_JOB;
inline const std::string kStartAgent = AS_ALICE "/bin/launchctl load -w " AGENT_JOB;

inline const std::string kCheckDaemon =
    AS_ROOT "/bin/launchctl list com.quorvix.SystemAgentDaemon &> /dev/null";
inline const std::string kStopDaemon = AS_ROOT "/bin/launchctl unload -w " DAEMON_JOB;
inline const std::string kStartDaemon = AS_ROOT "/bin/launchctl load -w " DAEMON_JOB;

inline const std::string kDeleteServerSettings =
    AS_ROOT "/bin/rm  " SYSTEM_AGENT "settings/safeguarding_server.xml";
inline const std::string kDeleteProtocolSettings =
    AS_ROOT "/bin/rm  " SYSTEM_AGENT "settings/tkprotocolserver.settings.xml";
inline const std::string kDeleteCloudSettings =
    AS_ROOT "/bin/rm  " SYSTEM_AGENT "settings/safeguarding_cloud.xml";
inline const std::string kGenerate =
    "echo -n > " SYSTEM_AGENT "settings/daemon.settings.xml; " SYSTEM_AGENT
    "SystemAgentDaemon daemon exit";

}  // namespace expected
