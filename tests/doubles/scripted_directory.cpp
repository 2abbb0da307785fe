#include "doubles/scripted_directory.h"

#include "app/local_admin.h"

namespace doubles {

ScriptedDirectory &scriptedDirectory() {
  static ScriptedDirectory directory;
  return directory;
}

}  // namespace doubles

namespace app {

bool authenticateLocalAdminUser(const std::string &username, const std::string &password) {
  const auto &authenticate = doubles::scriptedDirectory().authenticate;
  return authenticate && authenticate(username, password);
}

}  // namespace app
