#include "app/app_statics.h"

#include "app/build_edition.h"

namespace app {

AppStatics &appStatics() {
  static AppStatics statics{.oem = std::string(buildEdition().oem),
                            .appName = std::string(buildEdition().appName)};
  return statics;
}

}  // namespace app
