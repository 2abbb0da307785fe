// Takes the place of a system command in the lab. It records the call in the lab's journal, applies
// the fault rules that a test has added for it and then becomes the real command, which the lab
// keeps at the same path below kReal.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

constexpr std::string_view kReal = "/usr/libexec/lab/real";
constexpr const char *kJournal = "/var/lab/journal";
constexpr const char *kFaults = "/var/lab/faults";

// A fault rule is one line: how often (six characters: a number, negative for the call of that
// number alone; or "always"), program ("any" for all), actions joined with commas, and a part of
// the command line (the rest of the line; ^ is its start).
struct FaultRule {
  std::string_view times;
  std::string_view program;
  std::string_view actions;
  std::string_view part;
};

std::string ownPath() {
  std::array<char, PATH_MAX> buffer;
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  return length > 0 ? std::string(buffer.data(), static_cast<size_t>(length)) : std::string();
}

// The lab's own housekeeping runs as root without sudo.
bool isIntercepted() { return getuid() != 0 || getenv("SUDO_UID") != nullptr; }

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 16384> buffer;
  ssize_t length;
  while ((length = read(descriptor, buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<size_t>(length));
  }
  return text;
}

// Takes everything up to the separator off the front of a text.
std::string_view takeField(std::string_view &text, char separator) {
  const size_t end = std::min(text.find(separator), text.size());
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return field;
}

// A static executable has no name service, and the lab's accounts are all in the file.
std::string userName(uid_t uid) {
  std::string id = std::to_string(uid);
  const int file = open("/etc/passwd", O_RDONLY | O_CLOEXEC);
  const std::string accounts = file < 0 ? std::string() : readAll(file);
  if (file >= 0) close(file);
  std::string_view rest = accounts;
  while (!rest.empty()) {
    std::string_view account = takeField(rest, '\n');
    const std::string_view name = takeField(account, ':');
    takeField(account, ':');
    if (takeField(account, ':') == id) return std::string(name);
  }
  return id;
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      std::array<char, 8> escape;
      snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
      result += escape.data();
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string currentTime() {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  tm parts;
  gmtime_r(&now.tv_sec, &parts);
  std::array<char, 32> seconds;
  strftime(seconds.data(), seconds.size(), "%Y-%m-%dT%H:%M:%S", &parts);
  std::array<char, 64> text;
  snprintf(text.data(), text.size(), "%s.%03ldZ", seconds.data(), now.tv_nsec / 1000000);
  return text.data();
}

// One write to a file opened for appending: lines of concurrent commands never mix.
void recordCall(std::string_view program, const std::vector<std::string_view> &arguments) {
  std::string line =
      "{\"time\":" + quoted(currentTime()) + ",\"user\":" + quoted(userName(getuid())) +
      ",\"pid\":" + std::to_string(getpid()) + ",\"ppid\":" + std::to_string(getppid()) +
      ",\"program\":" + quoted(program) + ",\"argv\":[";
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) line += ',';
    line += quoted(arguments[i]);
  }
  line += "]}\n";
  const int file = open(kJournal, O_WRONLY | O_APPEND | O_CLOEXEC);
  if (file < 0 || write(file, line.data(), line.size()) < 0) perror("lab: journal");
  if (file >= 0) close(file);
}

int number(std::string_view text, int base = 10) {
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value, base);
  return value;
}

std::string bytesFromHex(std::string_view digits) {
  std::string bytes;
  for (size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes += static_cast<char>(number(digits.substr(i, 2), 16));
  }
  return bytes;
}

void printError(const std::string &text) { fwrite(text.data(), 1, text.size(), stderr); }

void perform(std::string_view action) {
  const std::string_view verb = takeField(action, '=');
  if (verb == "exit") {
    _exit(number(action));
  } else if (verb == "signal") {
    signal(number(action), SIG_DFL);
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_UNBLOCK, &all, nullptr);
    kill(getpid(), number(action));
  } else if (verb == "delay") {
    const std::chrono::duration<double> seconds(strtod(std::string(action).c_str(), nullptr));
    std::this_thread::sleep_for(seconds);
  } else if (verb == "stderr") {
    printError(std::string(static_cast<size_t>(number(action)), 'e'));
  } else if (verb == "prints") {
    printError(bytesFromHex(action));
  } else {
    fprintf(stderr, "lab: unknown action \"%.*s\"\n", static_cast<int>(verb.size()), verb.data());
  }
}

// Counts one call for the rule whose line starts at the offset; whether the rule applies to it.
bool countCall(int file, off_t offset, std::string_view times) {
  if (times == "always") return true;
  const int left = number(times);
  if (left == 0) return false;
  std::array<char, 8> digits;
  snprintf(digits.data(), digits.size(), "%06d", left > 0 ? left - 1 : left + 1);
  return pwrite(file, digits.data(), 6, offset) == 6 && left >= -1;
}

bool contains(std::string_view commandLine, std::string_view part) {
  if (part.starts_with('^')) return commandLine.starts_with(part.substr(1));
  return commandLine.find(part) != std::string_view::npos;
}

// The actions of all rules that apply to this call, each rule counted under a lock.
std::vector<std::string> takeActions(std::string_view program, std::string_view commandLine) {
  std::vector<std::string> actions;
  const int file = open(kFaults, O_RDWR | O_CLOEXEC);
  if (file < 0) return actions;
  flock(file, LOCK_EX);
  const std::string text = readAll(file);
  std::string_view rest = text;
  while (!rest.empty()) {
    const off_t offset = rest.data() - text.data();
    std::string_view line = takeField(rest, '\n');
    FaultRule rule;
    rule.times = takeField(line, ' ');
    rule.program = takeField(line, ' ');
    rule.actions = takeField(line, ' ');
    rule.part = line;
    if (rule.program != "any" && rule.program != program) continue;
    if (!contains(commandLine, rule.part)) continue;
    if (!countCall(file, offset, rule.times)) continue;
    while (!rule.actions.empty()) actions.emplace_back(takeField(rule.actions, ','));
  }
  close(file);
  return actions;
}

std::string joined(const std::vector<std::string_view> &arguments) {
  std::string text;
  for (const std::string_view argument : arguments) {
    if (!text.empty()) text += ' ';
    text += argument;
  }
  return text;
}

}  // namespace

int main(int argc, char *argv[]) {
  const std::string path = ownPath();
  if (isIntercepted()) {
    const std::string_view program = std::string_view(path).substr(path.rfind('/') + 1);
    const std::vector<std::string_view> arguments(argv, argv + argc);
    recordCall(program, arguments);
    for (const std::string &action : takeActions(program, joined(arguments))) perform(action);
  }
  const std::string real = std::string(kReal) + path;
  execv(real.c_str(), argv);
  fprintf(stderr, "lab: %s: %s\n", real.c_str(), strerror(errno));
  return 127;
}
