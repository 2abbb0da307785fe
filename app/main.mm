#import <AppKit/AppKit.h>

#include <string>

#import "app/AppDelegate.h"
#include "app/app_statics.h"
#include "app/diagnostics.h"
#include "app/local_admin.h"
#include "app/not_admin_message.h"
#include "app/ns_string.h"

namespace {

/// Short name of the user who runs the program.
std::string username;

void showNotAdminAlert() {
  const std::string &appName = app::appStatics().appName;
  [NSApplication sharedApplication];  // the alert needs the window server
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  [[alert window] setTitle:app::nsString(appName)];
  [alert setMessageText:app::nsString(app::notAdminMessage(appName, username))];
  [alert addButtonWithTitle:@"Quit"];
  [alert runModal];
}

/// The top-level objects live as long as the program, so nobody releases them.
void loadMainInterface(AppDelegate *owner) {
  NSArray *topLevelObjects = nil;
  if (![[NSBundle mainBundle] loadNibNamed:@"MainMenu"
                                     owner:owner
                           topLevelObjects:&topLevelObjects]) {
    app::fatalError("interface file MainMenu cannot be loaded from the bundle");
  }
  [topLevelObjects retain];
}

}  // namespace

int main(int argc, const char *argv[]) {
  NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
  username = app::utf8(NSUserName());
  if (!app::checkLocalAdminUser(username)) {
    showNotAdminAlert();
    [pool drain];
    return 0;
  }
  AppDelegate *delegate = [[AppDelegate alloc] init];
  [[NSApplication sharedApplication] setDelegate:delegate];
  loadMainInterface(delegate);
  [pool drain];
  NSApplicationMain(argc, argv);
  return 0;
}
