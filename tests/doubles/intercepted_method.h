#pragma once

#import <objc/runtime.h>

namespace doubles {

/// Replaces one Objective-C method for as long as this object lives.
class InterceptedMethod {
 public:
  static InterceptedMethod ofInstances(Class type, SEL name, IMP replacement) {
    return {class_getInstanceMethod(type, name), replacement};
  }
  static InterceptedMethod ofClass(Class type, SEL name, IMP replacement) {
    return {class_getClassMethod(type, name), replacement};
  }
  ~InterceptedMethod() { method_setImplementation(method_, original_); }
  InterceptedMethod(const InterceptedMethod &) = delete;
  InterceptedMethod &operator=(const InterceptedMethod &) = delete;

 private:
  InterceptedMethod(Method method, IMP replacement)
      : method_(method), original_(method_setImplementation(method, replacement)) {}

  Method method_;
  IMP original_;
};

}  // namespace doubles
