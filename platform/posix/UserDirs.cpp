#include "platform/posix/UserDirs.h"

namespace kiv::platform {
namespace {

std::string_view WithoutLeadingBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

/// Takes `prefix` off the text; false where it does not begin so.
bool Consume(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) {
    return false;
  }
  text.remove_prefix(prefix.size());
  return true;
}

/// What stands up to the closing quote; false where there is none.
bool Unquoted(std::string_view rest, std::string& value) {
  for (std::size_t i = 0; i < rest.size(); ++i) {
    if (rest[i] == '"') {
      return true;
    }
    if (rest[i] == '\\' && i + 1 < rest.size()) {
      ++i;
    }
    value.push_back(rest[i]);
  }
  return false;
}

/// The folder in one line, empty where the line says nothing of the variable.
std::string FolderInLine(std::string_view line, std::string_view variable, std::string_view home) {
  line = WithoutLeadingBlanks(line);
  if (!Consume(line, variable)) {
    return {};
  }
  line = WithoutLeadingBlanks(line);
  if (!Consume(line, "=")) {
    return {};
  }
  line = WithoutLeadingBlanks(line);
  if (!Consume(line, "\"")) {
    return {};
  }
  std::string folder;
  const bool inHome = line.starts_with("$HOME/") || line.starts_with("$HOME\"");
  if (inHome) {
    line.remove_prefix(std::string_view("$HOME").size());
    folder = home;
  }
  if ((!inHome && !line.starts_with('/')) || !Unquoted(line, folder)) {
    return {};
  }
  while (folder.size() > 1 && folder.back() == '/') {
    folder.pop_back();
  }
  return folder;
}

}  // namespace

std::string FolderFromUserDirs(std::string_view text, std::string_view variable, std::string_view home) {
  std::string found;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    if (std::string folder = FolderInLine(line, variable, home); !folder.empty()) {
      found = std::move(folder);
    }
    text.remove_prefix(line.size() < text.size() ? line.size() + 1 : text.size());
  }
  return found;
}

}  // namespace kiv::platform
