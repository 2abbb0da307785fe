#pragma once

#include <string_view>

#include "agent/accounts.h"

namespace agent {

/// Whether the listing of installed profiles names the edition's bundle identifier, also as the
/// beginning of a longer one. An unknown `oem` takes the first edition's identifier. Every failure,
/// a wrong password among them, counts as no. Blocks until the command has ended.
bool checkMDMProfile(std::string_view oem, const Credentials &administrator);

}  // namespace agent
