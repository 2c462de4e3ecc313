// SPDX-License-Identifier: MIT
#include <cctype>
#include <sstream>

#include "packaging/reference/formats.h"

namespace stowra_reference {

namespace {

constexpr std::size_t kLineLength = 72;

// Text that the macros take as it is.
std::string Plain(const std::string& text) {
  return Replaced(Replaced(text, "\\", "\\e"), "-", "\\-");
}

// A line that is not taken for a macro.
std::string Line(const std::string& text) {
  const bool like_macro = text.rfind('.', 0) == 0 || text.rfind('\'', 0) == 0;
  return (like_macro ? "\\&" : "") + Plain(text) + "\n";
}

// Text that a viewer breaks into lines as it likes.
std::string Filled(const std::string& text) {
  std::string lines;
  std::string line;
  std::istringstream stream(text);
  for (std::string word; stream >> word;) {
    if (!line.empty() && line.size() + 1 + word.size() > kLineLength) {
      lines += Line(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  }
  return line.empty() ? lines : lines + Line(line);
}

std::string Bold(const std::string& text) { return "\\fB" + Plain(text) + "\\fR"; }

std::string Italic(const std::string& text) { return "\\fI" + Plain(text) + "\\fR"; }

std::string Heading(const Argument& argument) {
  std::vector<std::string> names;
  for (const std::string& name : argument.names) names.push_back(Bold(name));
  std::string heading = Joined(names, ", ");
  for (const std::string& value : argument.values) {
    heading += (heading.empty() ? "" : " ") + Italic(value);
  }
  return heading;
}

void WriteArguments(std::ostream& page, const std::vector<Argument>& arguments) {
  for (const Argument& argument : arguments) {
    page << ".TP\n" << Heading(argument) << "\n" << Filled(argument.description);
    if (argument.required && !argument.names.empty()) page << "(required)\n";
    if (!argument.choices.empty()) {
      page << "(" << Plain(Joined(argument.choices, ", ")) << ")\n";
    }
    if (!argument.environment.empty()) {
      page << "(environment: " << Bold(argument.environment) << ")\n";
    }
  }
}

std::string Usage(const Command& command) {
  std::string usage = Bold(command.name) + " [" + Italic("OPTIONS") + "]";
  if (!command.commands.empty()) usage += " [" + Italic("COMMAND") + "]";
  for (const Argument& positional : command.positionals) {
    const std::string name = Heading(positional) + (positional.repeatable ? "..." : "");
    usage += positional.required ? " " + name : " [" + name + "]";
  }
  return usage;
}

void WriteExamples(std::ostream& page, const std::string& examples) {
  page << ".nf\n";
  std::istringstream stream(examples);
  for (std::string line; std::getline(stream, line);) page << Line(line);
  page << ".fi\n";
}

void WriteCommand(std::ostream& page, const Command& command) {
  page << ".SS " << Usage(command) << "\n" << Filled(command.description);
  WriteArguments(page, command.positionals);
  WriteArguments(page, command.options);
  if (!command.examples.empty()) {
    page << ".PP\nExamples:\n.PP\n";
    WriteExamples(page, command.examples);
  }
}

}  // namespace

std::string ManPage(const Command& program, const std::string& version, const std::string& date,
                    const std::string& end) {
  std::ostringstream page;
  std::string summary = Summary(program.description);
  if (!summary.empty()) {
    summary[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(summary[0])));
  }
  std::string title = program.name;
  for (char& letter : title) {
    letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  }
  page << ".\\\" SPDX-License-Identifier: MIT\n"
       << ".TH " << title << " 1 \"" << date << "\" \"CommonStowraapi " << version
       << "\" \"User Commands\"\n"
       << ".SH NAME\n"
       << Plain(program.name) << " \\- " << Plain(summary) << "\n.SH SYNOPSIS\n"
       << Usage(program) << "\n.SH DESCRIPTION\n"
       << Filled(program.description) << ".SH OPTIONS\n";
  WriteArguments(page, program.positionals);
  WriteArguments(page, program.options);
  if (!program.commands.empty()) page << ".SH COMMANDS\n";
  for (const Command& command : program.commands) WriteCommand(page, command);
  page << ".SH EXAMPLES\n";
  WriteExamples(page, program.examples);
  page << end;
  return page.str();
}

}  // namespace stowra_reference
