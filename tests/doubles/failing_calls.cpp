#include "doubles/failing_calls.h"

#include <cerrno>
#include <csignal>

namespace doubles {

FailingCalls &failingCalls() {
  static FailingCalls calls;
  return calls;
}

int errorFor(std::string_view call) {
  failingCalls().made.emplace_back(call);
  Fault &fault = failingCalls().fault;
  if (call != fault.call || fault.usesBefore-- != 0) return 0;
  fault.happened = true;
  if (fault.error == kEndsTheProcess) std::raise(SIGKILL);
  return fault.error;
}

bool fails(std::string_view call) {
  const int error = errorFor(call);
  if (error != 0) errno = error;
  return error != 0;
}

}  // namespace doubles
