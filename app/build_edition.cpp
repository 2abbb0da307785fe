#include "app/build_edition.h"

#ifndef BUILD_OEM
#error "BUILD_OEM must hold the oem value of the edition to build, as a string literal"
#endif

namespace app {

const Edition &buildEdition() {
  constexpr const Edition *kEdition = editionWithOem(BUILD_OEM);
  static_assert(kEdition != nullptr, "BUILD_OEM must be in the edition table");
  return *kEdition;
}

}  // namespace app
