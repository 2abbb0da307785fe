#include "app/diagnostics.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace app {

void ignoreBrokenPipes() { std::signal(SIGPIPE, SIG_IGN); }

void openStandardStreams() {
  int null = STDIN_FILENO;
  while (null <= STDERR_FILENO) {
    null = ::open("/dev/null", O_RDWR);  // takes the lowest free descriptor
    if (null < 0) fatalError("the null device cannot be opened");
  }
  ::close(null);
}

void printLine(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void StderrOutputStream::write(const std::string &text) const { std::fputs(text.c_str(), stderr); }

void fatalError(std::string_view what) {
  const StderrOutputStream stream;
  stream.write("fatal error: " + std::string(what) + "\n");
  std::abort();
}

}  // namespace app
