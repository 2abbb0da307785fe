#pragma once

#include <string>

namespace agent {

/// The administrator who logged in, as typed. Not the console user.
struct Credentials {
  std::string user;
  std::string pwd;
};

/// The user who owns the console, whose launchd domain holds the per-user agent job. Not the
/// administrator.
struct ConsoleUser {
  std::string user;
  std::string uid;
};

}  // namespace agent
