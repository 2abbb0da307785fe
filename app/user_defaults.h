#pragma once

namespace app {

/// Registers this program's values for settings of the platform. The platform reads them while the
/// application object is created, so this comes first. What the user has set still wins.
void registerUserDefaults();

}  // namespace app
