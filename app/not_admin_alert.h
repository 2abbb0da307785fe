#pragma once

#include <string>

namespace app {

/// Activates the application and runs an alert that informs the user that they are not a local
/// administrator. Returns when its Quit button is pressed. Main thread only.
void showNotAdminAlert(const std::string &appName, const std::string &username);

}  // namespace app
