#include "doubles/fake_directory.h"

#include "app/local_admin.h"

namespace doubles {

FakeDirectory &fakeDirectory() {
  static FakeDirectory directory;
  return directory;
}

}  // namespace doubles

namespace app {

bool checkLocalAdminUser(const std::string &username) {
  const auto &mayStart = doubles::fakeDirectory().mayStart;
  return mayStart && mayStart(username);
}

bool authenticateLocalAdminUser(const std::string &username, const std::string &password) {
  const auto &authenticate = doubles::fakeDirectory().authenticate;
  return authenticate && authenticate(username, password);
}

}  // namespace app
