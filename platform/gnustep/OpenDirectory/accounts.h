/// The local accounts as the name service (NSS) and PAM know them, without Objective-C.

#pragma once

#include <string>
#include <string_view>

namespace platform {

enum class Lookup { Found, Unknown, Failed };

/// Outcome of a lookup. `error` is the errno of a failed one, else 0.
struct LookupResult {
  Lookup outcome;
  int error = 0;
};

/// Looks up a name exactly as given, without folding case or trimming.
[[nodiscard]] LookupResult findUser(std::string_view name) noexcept;
[[nodiscard]] LookupResult findGroup(std::string_view name) noexcept;

enum class Membership { Member, NotMember, UnknownUser, UnknownGroup, Failed };

/// Outcome of a membership question. `error` is the errno of a failed one, else 0.
struct MembershipResult {
  Membership outcome;
  int error = 0;
};

/// Whether the group is the user's primary group or lists the user.
[[nodiscard]] MembershipResult isMember(std::string_view user, std::string_view group) noexcept;

/// Verifies a password and that the account is usable. Returns a PAM status, PAM_SUCCESS when
/// right. An account that has no password accepts the empty password only.
[[nodiscard]] int verifyPassword(std::string_view user, std::string_view password) noexcept;

/// PAM's own words for a status.
[[nodiscard]] std::string describePamStatus(int status);

}  // namespace platform
