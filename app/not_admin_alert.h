#pragma once

#include <string>

namespace app {

/// The start-up refusal: an alert under the edition's title, with one Quit button. Activates the
/// application, and returns when the button was pressed. Main thread only.
void showNotAdminAlert(const std::string &appName, const std::string &username);

}  // namespace app
