#include "agent/mdm_profile.h"

#include <string>

#include "agent/command_prefix.h"
#include "agent/shell.h"
#include "app/edition.h"

namespace agent {

bool checkMDMProfile(std::string_view oem, const Credentials &administrator) {
  const std::string identifier(app::editionOrDefault(oem).profileIdentifier);
  // The third sudo, the two spaces, and /bin/sh instead of bash are required.
  const std::string command =
      asRoot(administrator, "/usr/bin/sudo /usr/bin/profiles list |  grep " + identifier);
  const std::string listing = runShellCommand(kSh, command, ShellMode::Capture).text;
  // In grep's pattern a dot matches any character, so its output may name other identifiers.
  return listing.find(identifier) != std::string::npos;
}

}  // namespace agent
