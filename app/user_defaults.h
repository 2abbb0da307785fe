#pragma once

namespace app {

/// Registers this program's defaults for settings of the platform. The platform may read them while
/// the application object is created, so this comes before. The user's own settings still win.
void registerUserDefaults();

}  // namespace app
