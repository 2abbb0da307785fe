#pragma once

#include <string>

namespace app {

/// Name of the user who owns the console, as a shell command prints it: with the trailing newline,
/// and with the command's standard error.
std::string getloggedInUser();

/// Whether that user may use the program, as a member of the local group "admin". Every failure of
/// the directory counts as no. Blocks until the directory answers.
bool checkLocalAdminUser(const std::string &username);

/// Whether that is the user's password and the user is a member of the local group "admin". Every
/// failure of the directory counts as no. Blocks until the directory answers.
bool authenticateLocalAdminUser(const std::string &username, const std::string &password);

}  // namespace app
