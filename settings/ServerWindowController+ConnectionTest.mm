#import "settings/ServerWindowController.h"

#include "app/console.h"
#include "app/outlet.h"
#include "settings/connection_test.h"
#include "settings/input_check.h"

@implementation ServerWindowController (ConnectionTest)

- (IBAction)TestAction:(id)sender {
  [self showStatus:NSImageNameStatusNone];
  const std::string serverText = [self trimmedTextOf:OUTLET(servername)];
  const std::string portText = [self trimmedTextOf:OUTLET(port)];
  const settings::InputVerdict verdict = settings::checkServer(serverText, [self isIPAddressMode]);
  if (verdict == settings::InputVerdict::ClearServer) [servername setStringValue:@""];
  if (verdict != settings::InputVerdict::Accept) return;

  const NSInteger kind = [OUTLET(testChoice) indexOfSelectedItem];
  app::printLine(std::to_string(kind));
  std::string command = settings::pingCommand(serverText);
  if (kind == 1) {
    if (settings::checkPort(portText) == settings::InputVerdict::ResetPort) {
      [port setStringValue:defaultPort];
      return;
    }
    command = settings::portTestCommand(serverText, portText);
  }
  [self showStatus:settings::isReachable(command) ? NSImageNameStatusAvailable
                                                  : NSImageNameStatusUnavailable];
}

- (void)showStatus:(NSString *)imageName {
  [OUTLET(testStatus) setImage:[NSImage imageNamed:imageName]];
}

@end
