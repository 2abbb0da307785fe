#pragma once

#include <string_view>

#include "agent/accounts.h"

namespace agent {

/// Whether the list of installed profiles contains the edition's bundle identifier, even as part of
/// a longer one: required. An unknown `oem` means the first edition's identifier. Every failure,
/// such as a wrong password, counts as no. Blocks until the command has ended.
bool checkMDMProfile(std::string_view oem, const Credentials &administrator);

}  // namespace agent
