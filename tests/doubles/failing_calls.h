#pragma once

#include <string>
#include <string_view>
#include <vector>

/// System calls that fail when a test wants them to. The linker calls __wrap_x instead of x, and
/// the C library's own x as __real_x (option --wrap, which Apple's linker does not have).
namespace doubles {

/// An `error` that ends the process instead.
inline constexpr int kEndsTheProcess = -1;

/// Which call fails, on which use of it, and with which error number.
struct Fault {
  std::string_view call = {};
  int error = 0;
  int usesBefore = 0;
  bool happened = false;
};

/// The current fault, and the calls made since a test emptied the list.
struct FailingCalls {
  Fault fault;
  std::vector<std::string> made;
};

FailingCalls &failingCalls();

/// Records the call and returns the error number for this use of it; 0 lets it through.
int errorFor(std::string_view call);

/// The same for a call that sets errno.
bool fails(std::string_view call);

}  // namespace doubles

// The names are the linker's.
#pragma clang diagnostic ignored "-Wreserved-identifier"

/// Defines a call that returns its error number.
#define RETURNS_ERROR(call, parameters, arguments)       \
  extern "C" int __real_##call parameters;               \
  extern "C" int __wrap_##call parameters {              \
    const int error = doubles::errorFor(#call);          \
    return error != 0 ? error : __real_##call arguments; \
  }

/// Defines a call that returns `failed` and sets errno.
#define SETS_ERRNO(type, failed, call, parameters, arguments)          \
  extern "C" type __real_##call parameters;                            \
  extern "C" type __wrap_##call parameters {                           \
    return doubles::fails(#call) ? (failed) : __real_##call arguments; \
  }
