#pragma once

#import <AppKit/AppKit.h>

@interface Sample : NSObject <NSApplicationDelegate> {
  IBOutlet NSTextField *field;
}

- (IBAction)press:(id)sender;

@end
