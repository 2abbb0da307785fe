#include "json_reader.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

namespace platform {
namespace {

/// Hands out bytes and keeps count, since the parser gives no position with its events.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char *;
  using reference = const char &;

  CountingIterator(const char *at, std::size_t *count) : at_(at), count_(count) {}
  reference operator*() const { return *at_; }
  CountingIterator &operator++() {
    ++at_;
    ++*count_;
    return *this;
  }
  bool operator==(const CountingIterator &other) const { return at_ == other.at_; }
  bool operator!=(const CountingIterator &other) const { return at_ != other.at_; }

 private:
  const char *at_;
  std::size_t *count_;
};

/// Keeps the reason of an nlohmann message: without its error number and position, and without the
/// text last read, which may be no UTF-8.
std::string reasonOf(std::string message) {
  const std::size_t number = message.find("] ");
  if (number != std::string::npos) message.erase(0, number + 2);
  const std::size_t position = message.find(": ");
  if (message.starts_with("parse error at") && position != std::string::npos) {
    message.erase(0, position + 2);
  }
  const std::size_t lastRead = message.find("; last read: '");
  if (lastRead != std::string::npos) {
    const std::size_t end = message.rfind('\'');
    message.erase(lastRead, end + 1 - lastRead);
  }
  return message;
}

class Handler final : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit Handler(JSONEvents &events) : events_(events) {}

  bool null() override { return events_.null(); }
  bool boolean(bool value) override { return events_.boolean(value); }
  bool number_integer(number_integer_t value) override { return events_.integer(value); }
  bool number_unsigned(number_unsigned_t value) override { return events_.unsignedInteger(value); }
  bool number_float(number_float_t value, const string_t &) override { return events_.real(value); }
  bool string(string_t &value) override { return events_.string(value); }
  bool binary(binary_t &) override { return false; }
  bool key(string_t &name) override { return events_.key(name); }
  bool start_object(std::size_t) override { return enter() && events_.beginObject(); }
  bool end_object() override { return leave() && events_.endObject(); }
  bool start_array(std::size_t) override { return enter() && events_.beginArray(); }
  bool end_array() override { return leave() && events_.endArray(); }

  bool parse_error(std::size_t position, const std::string &,
                   const nlohmann::detail::exception &exception) override {
    position_ = position;
    problem_ = reasonOf(exception.what());
    return false;
  }

  const std::string &problem() const { return problem_; }
  /// How many bytes end with the offending one; nothing for an offence that only this class sees.
  std::optional<std::size_t> position() const { return position_; }

 private:
  bool enter() {
    if (depth_ < kMaxJSONDepth) return ++depth_ > 0;
    problem_ = "nested more than " + std::to_string(kMaxJSONDepth) + " levels deep";
    return false;
  }
  bool leave() { return depth_-- > 0; }

  JSONEvents &events_;
  std::string problem_ = "a value that cannot be represented";
  std::optional<std::size_t> position_;
  int depth_ = 0;
};

JSONError errorAt(std::string_view text, std::size_t offset, std::string problem) {
  const std::string_view before = text.substr(0, offset);
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0
  const auto isCharacterStart = [](char byte) { return (byte & 0xC0) != 0x80; };
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const auto column = std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineStart),
                                    before.end(), isCharacterStart) +
                      1;
  return {static_cast<std::size_t>(line), static_cast<std::size_t>(column), std::move(problem)};
}

}  // namespace

std::optional<JSONError> readJSON(std::string_view text, JSONEvents &events) {
  // nlohmann takes NUL for the end of the text and would not look at what follows.
  const std::string_view visible = text.substr(0, text.find('\0'));
  std::size_t consumed = 0;
  Handler handler(events);
  const bool complete = nlohmann::json::sax_parse(
      CountingIterator(visible.data(), &consumed),
      CountingIterator(visible.data() + visible.size(), &consumed), &handler);
  const std::size_t position = handler.position().value_or(consumed);
  const bool stoppedAtNul = position >= visible.size() && visible.size() < text.size();
  if (complete && !stoppedAtNul) return std::nullopt;
  if (stoppedAtNul) return errorAt(text, visible.size(), "a NUL character");
  return errorAt(text, position == 0 ? 0 : position - 1, handler.problem());
}

}  // namespace platform
