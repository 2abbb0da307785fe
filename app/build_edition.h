#pragma once

#include "app/edition.h"

namespace app {

/// The edition that this executable was built for. The only place where the build's choice enters.
const Edition &buildEdition();

}  // namespace app
