#pragma once

#include <optional>
#include <string>

#include "agent/accounts.h"
#include "i18n/language.h"

namespace app {

/// The application-wide values; they live as long as the process. Main thread only. Only `main` and
/// the two window controllers use them: everything below takes arguments. The settings window
/// controller itself (`serverWindow`) is kept by AppDelegate.
struct AppStatics {
  std::string oem;      ///< edition, fixed for the build
  std::string appName;  ///< window title of the edition, fixed for the build
  i18n::Language lang = i18n::Language::En;
  std::string server;  ///< as applied
  std::string port;    ///< as applied
  std::string user;    ///< administrator's name as typed at the last login, right or wrong
  std::string pwd;     ///< password, as typed with that name
  bool mdm_profile = false;
  /// From the command line; if not given, Apply looks it up.
  std::optional<agent::ConsoleUser> consoleUser;
};

/// The only instance, created for the build's edition on first use.
AppStatics &appStatics();

}  // namespace app
