#include "cli/report.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "agent/utf8.h"

namespace cli {
namespace {

constexpr std::uint32_t kReplacementCharacter = 0xFFFD;

/// Takes one character off the front of the text. A byte that does not begin a valid one becomes
/// the replacement character.
std::uint32_t takeCharacter(std::string_view &text) {
  std::size_t length = 1;
  while (length <= 4 && !agent::isUtf8(text.substr(0, length))) ++length;
  const bool isValid = length <= std::min<std::size_t>(4, text.size());
  if (!isValid) length = 1;
  const std::string_view bytes = text.substr(0, length);
  text.remove_prefix(length);
  if (!isValid) return kReplacementCharacter;
  // The lead byte of a longer form has one payload bit fewer for each byte of the form.
  const auto lead = static_cast<unsigned char>(bytes.front());
  std::uint32_t character = length == 1 ? lead : lead & (0x7FU >> length);
  for (const char c : bytes.substr(1)) {
    character = character << 6 | (static_cast<unsigned char>(c) & 0x3FU);
  }
  return character;
}

std::string escape(std::uint32_t utf16Unit) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "\\u";
  for (const int shift : {12, 8, 4, 0}) text += kDigits[utf16Unit >> shift & 0xF];
  return text;
}

std::string escaped(std::uint32_t character) {
  if (character == '"' || character == '\\') return {'\\', static_cast<char>(character)};
  if (character >= 0x20 && character < 0x7F) return {static_cast<char>(character)};
  if (character < 0x10000) return escape(character);
  const std::uint32_t offset = character - 0x10000;
  return escape(0xD800 + (offset >> 10)) + escape(0xDC00 + (offset & 0x3FF));
}

/// The text without anything that would move a terminal's cursor or break a line.
std::string printable(std::string_view text) {
  const std::string quoted = jsonString(text);
  return quoted.substr(1, quoted.size() - 2);
}

/// One member of a state: as JSON, and as people read it.
struct Member {
  std::string_view name;
  std::string json;
  std::string text;
};

Member boolean(std::string_view name, bool value, std::string_view yes, std::string_view no) {
  return {name, value ? "true" : "false", std::string(value ? yes : no)};
}

Member missing(std::string_view name, std::string_view text) {
  return {name, "null", std::string(text)};
}

Member string(std::string_view name, const std::optional<std::string> &value) {
  if (!value) return missing(name, "none");
  return {name, jsonString(*value), printable(*value)};
}

/// A stored port may be any integer; readers of JSON may not keep a large number exactly.
Member port(const std::optional<std::string> &value) {
  Member member = string("port", value);
  constexpr std::size_t kMostDigits = 5;
  const bool isSmall = value && !value->empty() && value->size() <= kMostDigits &&
                       value->find_first_not_of("0123456789") == std::string::npos;
  if (isSmall) member.json = *value;
  return member;
}

Member profile(const std::optional<bool> &value) {
  return value ? boolean("profile", *value, "yes", "no") : missing("profile", "none");
}

Member agentJob(const std::optional<bool> &value) {
  return value ? boolean("agent", *value, "loaded", "not loaded") : missing("agent", "none");
}

Member consoleUser(const std::string &name) {
  return name.empty() ? missing("console", "nobody") : string("console", name);
}

using Members = std::vector<Member>;

Members membersFor(const State &state) {
  return {string("server", state.stored.server),
          port(state.stored.port),
          string("language", state.stored.language),
          profile(state.stored.profile),
          boolean("daemon", state.daemonLoaded, "loaded", "not loaded"),
          agentJob(state.agentLoaded),
          consoleUser(state.consoleUser),
          boolean("unfinished", state.unfinished, "yes", "no")};
}

Members membersFor(const WantedSettings &wanted) {
  return {string("server", wanted.server), port(wanted.port), string("language", wanted.language),
          profile(wanted.profile)};
}

std::string jsonObject(const Members &members) {
  std::string json;
  for (const Member &member : members) {
    json += json.empty() ? "{" : ",";
    json += jsonString(member.name) + ":" + member.json;
  }
  return json + "}";
}

template <class Part>
std::string jsonPart(const std::optional<Part> &part) {
  return part ? jsonObject(membersFor(*part)) : "null";
}

std::string jsonArray(const std::vector<std::string> &strings) {
  std::string json;
  for (const std::string &text : strings) json += (json.empty() ? "" : ",") + jsonString(text);
  return "[" + json + "]";
}

std::string line(std::string_view name, const std::string &text) {
  constexpr std::size_t kColumn = 12;
  std::string padded(name);
  padded.resize(std::max(kColumn, padded.size()), ' ');
  return padded + text + "\n";
}

}  // namespace

std::string jsonString(std::string_view text) {
  std::string json = "\"";
  while (!text.empty()) json += escaped(takeCharacter(text));
  return json + "\"";
}

std::string jsonReport(const Report &report) {
  return jsonObject({boolean("changed", report.changed, "", ""),
                     {"before", jsonPart(report.before), ""},
                     {"after", jsonPart(report.after), ""},
                     {"wanted", jsonPart(report.wanted), ""},
                     {"problems", jsonArray(report.problems), ""}}) +
         "\n";
}

std::string textReport(const Report &report) {
  std::string text = line("changed", report.changed ? "yes" : "no");
  if (report.before && report.after) {
    const Members before = membersFor(*report.before);
    auto was = before.begin();
    for (const Member &is : membersFor(*report.after)) {
      text += line(is.name, (was->json == is.json ? "" : was->text + " -> ") + is.text);
      ++was;
    }
  }
  for (const std::string &problem : report.problems) text += line("problem", printable(problem));
  return text;
}

}  // namespace cli
