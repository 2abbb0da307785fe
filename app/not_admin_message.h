#pragma once

#include <string>
#include <string_view>

namespace app {

/// The message of the start-up alert for a user who is not a local administrator: one sentence per
/// language with the user's name in it, separated by blank lines. The edition table says which
/// editions show all five languages; the others show English and French.
std::string notAdminMessage(std::string_view appName, std::string_view username);

}  // namespace app
