#pragma once

#include <string>

namespace app {

/// Name of the user who owns the console, as a shell command prints it: untrimmed, with the
/// trailing newline, and with whatever the command prints on standard error.
std::string getloggedInUser();

/// Whether that user may use the program: a member of the local group "admin". Every failure of the
/// directory counts as no. Blocks while the directory answers.
bool checkLocalAdminUser(const std::string &username);

/// Whether the password is that user's own and the user is a member of the local group "admin".
/// Every failure of the directory counts as no. Blocks while the directory answers.
bool authenticateLocalAdminUser(const std::string &username, const std::string &password);

}  // namespace app
