#import "settings/ServerWindowController.h"

#include "app/diagnostics.h"
#include "app/outlet.h"
#include "settings/connectivity.h"
#include "settings/validation.h"

@implementation ServerWindowController (ConnectionTest)

- (IBAction)TestAction:(id)sender {
  [self showStatus:NSImageNameStatusNone];
  const std::string serverText = [self trimTextInField:OUTLET(servername)];
  const std::string portText = [self trimTextInField:OUTLET(port)];
  const settings::ValidationResult result =
      settings::validateServer(serverText, [self serverIsIPAddress]);
  if (result == settings::ValidationResult::ClearServer) [servername setStringValue:@""];
  if (result != settings::ValidationResult::Accept) return;

  // Required: the index is printed before the port is checked.
  const NSInteger kind = [OUTLET(testChoice) indexOfSelectedItem];
  app::printLine(std::to_string(kind));
  const bool testsPort = kind == 1;
  if (testsPort && settings::validatePort(portText) == settings::ValidationResult::ResetPort) {
    [port setStringValue:defaultPort];
    return;
  }
  const bool reachable = testsPort ? settings::acceptsConnection(serverText, portText)
                                   : settings::answersPing(serverText);
  [self showStatus:reachable ? NSImageNameStatusAvailable : NSImageNameStatusUnavailable];
}

- (void)showStatus:(NSString *)imageName {
  [OUTLET(testStatus) setImage:[NSImage imageNamed:imageName]];
  // Now: the command blocks the window, which would go on showing the previous result.
  [testStatus display];
}

@end
