/// Replaces a method from a category that still needs the original. Objective-C++.

#pragma once

#import <objc/runtime.h>

#include <string>

namespace platform {

/// Exchanges a method for the one with "platform_" before its name. The class must not inherit
/// either.
inline void exchange(Class owner, SEL method) {
  const std::string other = std::string("platform_") + sel_getName(method);
  method_exchangeImplementations(class_getInstanceMethod(owner, method),
                                 class_getInstanceMethod(owner, sel_registerName(other.c_str())));
}

}  // namespace platform
