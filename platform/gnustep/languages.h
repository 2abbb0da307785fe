/// The user's preferred languages as a Debian account gives them.

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

/// Looks up an environment variable; empty when unset.
using Environment = std::function<std::string(const char *name)>;

/// Language tags such as "fr-FR", best first, never empty. `chosen`, the user's own list, takes
/// precedence over LANGUAGE, a list, and that over the locale (LC_ALL, LC_MESSAGES, LANG). English
/// is last unless listed.
[[nodiscard]] std::vector<std::string> preferredLanguages(std::vector<std::string> chosen,
                                                          const Environment &environment);

}  // namespace platform
