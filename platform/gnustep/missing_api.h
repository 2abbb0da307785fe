/// Declarations that a program written for macOS 10.14 uses and that the headers of GNUstep base
/// 1.28 and gui 0.29 lack. Included ahead of every Objective-C++ source by the build, so that
/// sources import only the system's own headers. Definitions are in the file named for each gap.

#pragma once

#import <AppKit/AppKit.h>

// GNUstep defines nil as an integer or an id; neither converts to NSError ** in Objective-C++,
// where macOS has nullptr.
#undef nil
#define nil nullptr
#undef Nil
#define Nil nullptr

// MARK: Foundation

enum : NSInteger {
  NSPropertyListReadCorruptError = 3840,
};

constexpr NSJSONReadingOptions NSJSONReadingFragmentsAllowed = NSJSONReadingAllowFragments;

@interface NSFileManager (MissingAPI)
/// File URLs of `directory` in each of the domains of `domainMask`, in search order.
- (NSArray<NSURL *> *)URLsForDirectory:(NSSearchPathDirectory)directory
                             inDomains:(NSSearchPathDomainMask)domainMask;
@end

// MARK: AppKit

typedef NSString *NSImageName;

extern NSImageName const NSImageNameStatusAvailable;
extern NSImageName const NSImageNameStatusNone;
extern NSImageName const NSImageNameStatusUnavailable;

constexpr NSButtonType NSButtonTypeSwitch = NSSwitchButton;
constexpr NSBezelStyle NSBezelStyleRounded = NSRoundedBezelStyle;

constexpr NSEventType NSEventTypeKeyDown = NSKeyDown;
constexpr NSEventModifierFlags NSEventModifierFlagShift = NSShiftKeyMask;
constexpr NSEventModifierFlags NSEventModifierFlagControl = NSControlKeyMask;
constexpr NSEventModifierFlags NSEventModifierFlagOption = NSAlternateKeyMask;
constexpr NSEventModifierFlags NSEventModifierFlagCommand = NSCommandKeyMask;

#ifdef GS_OPENSTEP_V
// gui 0.29 loses this protocol with its own additions when a program asks for the macOS API only.
@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification *)notification;
- (void)applicationWillTerminate:(NSNotification *)notification;
@end
#endif

@interface NSBundle (MissingAPI)
/// Loads `nibName`, connects it to `owner` and returns its top-level objects, which the caller
/// owns only through the array.
- (BOOL)loadNibNamed:(NSNibName)nibName owner:(id)owner topLevelObjects:(NSArray **)topLevelObjects;
@end

@interface NSView (MissingAPI)
/// What a screen reader says of the view; see accessibility.mm.
- (void)setAccessibilityLabel:(NSString *)label;
- (NSString *)accessibilityLabel;
@end

@interface NSControl (MissingAPI)
/// The default-button look of a button; see control_highlight.mm.
- (BOOL)isHighlighted;
- (void)setHighlighted:(BOOL)highlighted;
@end
