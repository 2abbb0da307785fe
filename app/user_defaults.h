#pragma once

namespace app {

/// Registers this program's defaults for settings of the platform. The platform may read them while
/// it creates the application object, so call this before. The user's own settings still win.
void registerUserDefaults();

}  // namespace app
