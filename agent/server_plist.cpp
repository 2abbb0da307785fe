#include "agent/server_plist.h"

#include <optional>

#include "agent/atomic_file.h"
#include "agent/server_plist_path.h"
#include "app/error_log.h"

namespace agent {

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

std::error_code generateServerPlistFile(const ServerPlist &values) {
  const std::optional<std::string> path = serverPlistPath();
  if (!path) return {};
  const std::error_code error = writeFileAtomically(*path, serverPlistText(values));
  if (error) app::printErrorLog("unable to write in " + *path + " with error " + error.message());
  return error;
}

}  // namespace agent
