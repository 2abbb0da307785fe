#include "app/app_statics.h"

#include "app/build_edition.h"

namespace app {

AppStatics &appStatics() {
  static AppStatics statics = [] {
    AppStatics initial;
    initial.oem = buildEdition().oem;
    initial.appName = buildEdition().appName;
    return initial;
  }();
  return statics;
}

}  // namespace app
