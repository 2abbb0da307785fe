#pragma once

#include <string>

#include "app/diagnostics.h"

namespace app {

/// Returns the control. Stops the process if the outlet is not connected: a message to nil would do
/// nothing, and a control that is silently skipped is worse than a program that stops.
template <class Control>
Control *requiredOutlet(Control *control, const char *name) {
  if (control == nullptr) fatalError(std::string("outlet ") + name + " is not connected");
  return control;
}

}  // namespace app

/// Fetches an outlet of the current object by the name of its instance variable.
#define OUTLET(name) ::app::requiredOutlet(name, #name)
