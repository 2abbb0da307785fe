#import <AppKit/AppKit.h>

#include "app/not_admin_alert.h"

#include "app/not_admin_message.h"
#include "app/ns_string.h"

namespace app {

void showNotAdminAlert(const std::string &appName, const std::string &username) {
  // The alert needs the window server. The application never finishes launching, so nothing else
  // activates it, and the alert could open behind the windows of other programs.
  [[NSApplication sharedApplication] activateIgnoringOtherApps:YES];
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  // The title of the window and not of the alert, and an English button in every edition: required.
  [[alert window] setTitle:nsString(appName)];
  [alert setMessageText:nsString(notAdminMessage(appName, username))];
  [alert addButtonWithTitle:@"Quit"];
  [alert runModal];
}

}  // namespace app
