/// The local accounts as the name service (NSS) and PAM know them, without Objective-C. Nothing
/// here may be called from two threads at once. What cannot be looked up counts as missing.

#pragma once

#include <string_view>

namespace platform {

/// Whether there is a user or a group of exactly that name.
[[nodiscard]] bool userExists(std::string_view name) noexcept;
[[nodiscard]] bool groupExists(std::string_view name) noexcept;

/// Whether the group is the user's primary group or lists the user.
[[nodiscard]] bool isMember(std::string_view user, std::string_view group) noexcept;

/// Whether the password is the user's and the account is usable. An account that has no password
/// accepts the empty password only.
[[nodiscard]] bool verifyPassword(std::string_view user, std::string_view password) noexcept;

}  // namespace platform
