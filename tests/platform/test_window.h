#pragma once

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <string>

/// A test with a window of its own, to which it adds controls. Nothing is on screen before `show`.
class WithWindow : public testing::Test {
 protected:
  WithWindow() {
    [[NSApplication sharedApplication] finishLaunching];
    window_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 300, 200)
                                          styleMask:NSWindowStyleMaskTitled
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [window_ setReleasedWhenClosed:NO];
  }
  ~WithWindow() override {
    [window_ orderOut:nil];
    [window_ release];
  }

  template <class Control>
  Control *add(NSRect frame) {
    Control *control = [[[Control alloc] initWithFrame:frame] autorelease];
    [[window_ contentView] addSubview:control];
    return control;
  }

  NSButton *addCheckBox(NSRect frame) {
    NSButton *checkBox = add<NSButton>(frame);
    [checkBox setButtonType:NSButtonTypeSwitch];
    [checkBox setTitle:@"title"];
    return checkBox;
  }

  void show() { [window_ makeKeyAndOrderFront:nil]; }

  NSEvent *keyDown(NSString *characters, NSUInteger modifiers = 0) {
    return [NSEvent keyEventWithType:NSEventTypeKeyDown
                            location:NSZeroPoint
                       modifierFlags:modifiers
                           timestamp:0
                        windowNumber:[window_ windowNumber]
                             context:nil
                          characters:characters
         charactersIgnoringModifiers:characters
                           isARepeat:NO
                             keyCode:0];
  }

  /// Waits for an event for so many seconds.
  static NSEvent *nextEvent(NSUInteger mask, NSTimeInterval limit = 0) {
    return [NSApp nextEventMatchingMask:mask
                              untilDate:[NSDate dateWithTimeIntervalSinceNow:limit]
                                 inMode:NSDefaultRunLoopMode
                                dequeue:YES];
  }

  /// A part of the window's content, once all of it is drawn.
  NSBitmapImageRep *picture(NSRect part) {
    [window_ orderFront:nil];
    [window_ displayIfNeeded];
    [[window_ contentView] lockFocus];
    NSBitmapImageRep *shot = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:part] autorelease];
    [[window_ contentView] unlockFocus];
    return shot;
  }

  NSWindow *window_;
};
