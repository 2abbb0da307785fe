#pragma once

#include <optional>
#include <string>

#include "agent/accounts.h"
#include "i18n/language.h"

namespace app {

/// The application-wide values; they live for the whole run. Main thread only. Only `main`, the
/// login window and the settings window touch them: everything below takes arguments. The settings
/// window controller itself (`serverWindow`) is kept by AppDelegate.
struct AppStatics {
  std::string oem;      ///< edition, fixed for the build
  std::string appName;  ///< window title of the edition, fixed for the build
  i18n::Language lang = i18n::Language::En;
  std::string server;  ///< as applied
  std::string port;    ///< as applied
  std::string user;    ///< administrator's name as typed at the last login attempt
  std::string pwd;     ///< password as typed at the last login attempt
  bool mdm_profile = false;
  /// Named on the command line, else looked up by Apply.
  std::optional<agent::ConsoleUser> consoleUser;
};

/// The one set of values, made from the build's edition on first use.
AppStatics &appStatics();

}  // namespace app
