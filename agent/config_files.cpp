#include "agent/config_files.h"

#include <optional>
#include <system_error>

#include "agent/local_library.h"
#include "agent/shell.h"
#include "agent/whole_file.h"
#include "app/edition.h"
#include "app/error_log.h"

namespace agent {
namespace {

std::string inSystemAgentFolder(std::string_view oem, std::string_view name) {
  return std::string(app::editionOrDefault(oem).installFolder) + "/SystemAgent/" +
         std::string(name);
}

}  // namespace

std::string serverPlistText(const ServerPlist &values) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "    <!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "    <plist version=\"1.0\">\n"
         "    <dict>\n"
         "        <key>language</key>\n"
         "        <string>" +
         values.lang +
         "</string>\n"
         "        <key>server</key>\n"
         "        <string>" +
         values.server +
         "</string>\n"
         "        <key>port</key>\n"
         "        <integer>" +
         values.port +
         "</integer>\n"
         "        <key>profile</key>\n"
         "        " +
         (values.profile ? "<true/>" : "<false/>") +
         "\n"
         "    </dict>\n"
         "    </plist>";
}

void generateServerPlistFile(const ServerPlist &values) {
  const std::optional<std::string> path = serverPlistPath();
  if (!path) return;
  if (const std::error_code error = writeWholeFile(*path, serverPlistText(values))) {
    app::printErrorLog("unable to write in " + *path + " with error " + error.message());
  }
}

std::string deleteSettingsCommand(std::string_view oem, const Credentials &administrator,
                                  std::string_view filename) {
  return asRoot(administrator,
                "/bin/rm  " + inSystemAgentFolder(oem, "settings/") + std::string(filename));
}

std::string generateConfigFileCommand(std::string_view oem) {
  return "echo -n > " + inSystemAgentFolder(oem, "settings/daemon.settings.xml") + "; " +
         inSystemAgentFolder(oem, "SystemAgentDaemon") + " daemon exit";
}

void deleteSettings(std::string_view oem, const Credentials &administrator,
                    std::string_view filename) {
  runShellCommand(kBash, deleteSettingsCommand(oem, administrator, filename), ShellMode::WaitOnly);
}

void generateConfigFile(std::string_view oem) {
  runShellCommand(kBash, generateConfigFileCommand(oem), ShellMode::WaitOnly);
}

}  // namespace agent
