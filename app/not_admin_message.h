#pragma once

#include <string>
#include <string_view>

namespace app {

/// What the start-up alert says to a user who is no local administrator: one sentence per language
/// with the user's name in each, a blank line between them. Five languages where the
/// edition of that title says so, else English and French.
std::string notAdminMessage(std::string_view appName, std::string_view username);

}  // namespace app
