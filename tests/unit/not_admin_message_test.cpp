#include "app/not_admin_message.h"

#include <gtest/gtest.h>

namespace {

TEST(NotAdminMessage, IsInFiveLanguagesUnderTheOskelTitle) {
  EXPECT_EQ(app::notAdminMessage("Oskel Configuration Utility", "carol"),
            "User carol is not from local Admin group.\n\n"
            "L'utente carol non appartiene al gruppo Admin locale.\n\n"
            "El usuario carol no pertenece al grupo de administraci\xC3\xB3n local.\n\n"
            "L'utilisateur carol ne fait pas partie du groupe d'administrateurs local.\n\n"
            "Der Benutzer carol geh\xC3\xB6rt nicht zur lokalen Admin-Gruppe.");
}

TEST(NotAdminMessage, IsInEnglishAndFrenchUnderEveryOtherTitle) {
  for (const char *title :
       {"Zentavo Configuration Utility", "Fennrow Configuration Utility",
        "Tollwick Configuration Utility", "Another Title", "", "oskel configuration utility"}) {
    EXPECT_EQ(app::notAdminMessage(title, "carol"),
              "User carol is not from local Admin group.\n\n"
              "L'utilisateur carol ne fait pas partie du groupe d'administrateurs local.")
        << title;
  }
}

}  // namespace
