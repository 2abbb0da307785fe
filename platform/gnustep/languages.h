/// The user's preferred languages as the environment of a Debian process gives them.

#pragma once

#include <functional>
#include <string>
#include <vector>

namespace platform {

/// Looks up an environment variable; empty when unset.
using Environment = std::function<std::string(const char *name)>;

/// Language tags such as "fr-FR", best first, never empty. LANGUAGE, a list, goes before the locale
/// (LC_ALL, LC_MESSAGES, LANG); English stands last unless listed.
[[nodiscard]] std::vector<std::string> preferredLanguages(const Environment &environment);

}  // namespace platform
