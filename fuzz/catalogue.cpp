// The decoder of the catalogue: any bytes give either a complete catalogue or an error.

#include "i18n/catalogue.h"

#include <cstddef>
#include <cstdint>

#include "agent/utf8.h"
#include "check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const i18n::DecodedCatalogue decoded =
      i18n::decodeCatalogue({reinterpret_cast<const char *>(bytes), size});
  fuzz::check(decoded.catalogue.has_value() == decoded.error.empty(),
              "neither a catalogue nor an error, or both");
  fuzz::check(agent::isUtf8(decoded.error), "the error is not UTF-8");
  if (decoded.catalogue) {
    const i18n::JsonData &catalogue = *decoded.catalogue;
    for (const auto *info :
         {&catalogue.En, &catalogue.Fr, &catalogue.Es, &catalogue.It, &catalogue.Ge}) {
      fuzz::check(agent::isUtf8(info->Common.adminmsg) && agent::isUtf8(info->About.version),
                  "a string is not UTF-8");
    }
  }
  return 0;
}
