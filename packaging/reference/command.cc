// SPDX-License-Identifier: MIT
#include "packaging/reference/command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace stowra_reference {

namespace {

// More values than this mean that an option may be repeated.
constexpr int kManyValues = 1000;

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}

// CLI11 adds the description of each check, such as "ORDER:value in {matched->1,recorded->0}". A
// colon in brackets belongs to the name, as in "KIND[:VALUE]".
std::string TypeName(const CLI::Option& option) {
  const std::string text = option.get_type_name();
  int depth = 0;
  std::size_t end = 0;
  for (; end < text.size() && (depth > 0 || text[end] != ':'); ++end) {
    if (text[end] == '[') ++depth;
    if (text[end] == ']') --depth;
  }
  return text.substr(0, end);
}

std::vector<std::string> Choices(const CLI::Option& option) {
  const std::string text = option.get_type_name();
  const std::size_t begin = text.find('{');
  const std::size_t end = text.find('}', begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  std::istringstream list(text.substr(begin + 1, end - begin - 1));
  std::vector<std::string> choices;
  for (std::string choice; std::getline(list, choice, ',');) {
    choices.push_back(choice.substr(0, choice.find("->")));
  }
  return choices;
}

std::vector<std::string> Values(const CLI::Option& option) {
  if (option.get_positional()) return {option.get_name(true)};
  if (option.get_items_expected_max() == 0) return {};
  // Some say "FILE, required" for --help.
  const std::vector<std::string> given =
      Words(option.get_option_text().substr(0, option.get_option_text().find(',')));
  return given.empty() ? Words(TypeName(option)) : given;
}

Argument ReadArgument(const CLI::Option& option) {
  Argument argument;
  if (!option.get_positional()) {
    for (const std::string& name : option.get_snames()) argument.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) argument.names.push_back("--" + name);
  }
  argument.values = Values(option);
  argument.choices = Choices(option);
  argument.description = option.get_description();
  argument.environment = option.get_envname();
  argument.required = option.get_required();
  argument.repeatable = option.get_items_expected_max() > kManyValues;
  return argument;
}

// The emulator's description begins with its examples. `stowra` has them as the footer.
void SplitExamples(Command& command) {
  const std::string heading = "Examples:\n";
  if (command.description.rfind(heading, 0) == 0) {
    const std::size_t end = command.description.find("\n\n");
    command.examples = command.description.substr(0, end);
    command.description.erase(0, end == std::string::npos ? end : end + 2);
  }
  if (command.examples.rfind(heading, 0) == 0) command.examples.erase(0, heading.size());
}

// A command of its own, without those below it.
Command ReadAlone(const CLI::App& app) {
  Command command;
  command.name = app.get_name();
  command.description = app.get_description();
  command.examples = app.get_footer();
  SplitExamples(command);
  for (const CLI::Option* option : app.get_options()) {
    if (!option->get_positional() && option->get_group().empty()) continue;
    (option->get_positional() ? command.positionals : command.options)
        .push_back(ReadArgument(*option));
  }
  return command;
}

}  // namespace

bool Argument::TakesFile() const {
  return std::any_of(values.begin(), values.end(), [](const std::string& value) {
    return value.find("FILE") != std::string::npos || value.find("FOLDER") != std::string::npos ||
           value.find("DIR") != std::string::npos;
  });
}

// The programs have one level of commands.
Command ReadCommand(const CLI::App& app) {
  Command command = ReadAlone(app);
  for (const CLI::App* below : app.get_subcommands([](const CLI::App* candidate) {
         return !candidate->get_name().empty() && !candidate->get_group().empty();
       })) {
    command.commands.push_back(ReadAlone(*below));
  }
  return command;
}

std::string Summary(const std::string& description) {
  const std::string line = description.substr(0, description.find('\n'));
  std::string text = line.substr(0, std::min(line.find("; "), line.find(". ")));
  if (!text.empty() && text.back() == '.') text.pop_back();
  return text;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

std::string Joined(const std::vector<std::string>& texts, const std::string& separator) {
  std::string joined;
  for (const std::string& text : texts) {
    if (!joined.empty()) joined += separator;
    joined += text;
  }
  return joined;
}

}  // namespace stowra_reference
