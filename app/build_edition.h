#pragma once

#include "app/edition.h"

namespace app {

/// The edition that this executable was built for. Nothing else depends on the build's choice.
const Edition &buildEdition();

}  // namespace app
