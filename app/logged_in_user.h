#pragma once

#include <string>

namespace app {

/// Name of the user who owns the console, as a shell command prints it: with the trailing line end,
/// untrimmed, and with whatever the command says on its error stream.
std::string getloggedInUser();

}  // namespace app
