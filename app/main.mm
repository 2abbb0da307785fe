#import <AppKit/AppKit.h>

#include <string>

#import "app/AppDelegate.h"
#include "app/app_statics.h"
#include "app/diagnostics.h"
#include "app/local_admin.h"
#include "app/not_admin_alert.h"
#include "app/ns_string.h"
#include "app/user_defaults.h"
#include "settings/apply_workflow.h"

namespace {

/// Short name of the user who runs the program.
std::string username;

/// The top-level objects live as long as the process and are never released.
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
  app::ignoreBrokenPipes();
  app::openStandardStreams();
  NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
  app::registerUserDefaults();
  username = app::utf8(NSUserName());
  if (!app::checkLocalAdminUser(username)) {
    app::showNotAdminAlert(app::appStatics().appName, username);
    [pool drain];
    return 0;
  }
  // From argv: the platform's own list lacks the arguments that the platform itself interprets.
  app::appStatics().consoleUser = settings::consoleUserFromArguments({argv, argv + argc});
  AppDelegate *delegate = [[AppDelegate alloc] init];
  [[NSApplication sharedApplication] setDelegate:delegate];
  loadMainInterface(delegate);
  [pool drain];
  NSApplicationMain(argc, argv);
  return 0;
}
