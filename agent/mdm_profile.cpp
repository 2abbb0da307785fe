#include "agent/mdm_profile.h"

#include "agent/shell.h"
#include "app/edition.h"

namespace agent {

std::string checkMDMProfileCommand(std::string_view oem, const Credentials &administrator) {
  return asRoot(administrator, "/usr/bin/sudo /usr/bin/profiles list |  grep " +
                                   std::string(app::editionOrDefault(oem).profileIdentifier));
}

bool checkMDMProfile(std::string_view oem, const Credentials &administrator) {
  const std::string listing =
      runShellCommand(kSh, checkMDMProfileCommand(oem, administrator), ShellMode::Capture).text;
  // grep takes the identifier's dots for any character; only a real occurrence counts.
  return listing.find(app::editionOrDefault(oem).profileIdentifier) != std::string::npos;
}

}  // namespace agent
