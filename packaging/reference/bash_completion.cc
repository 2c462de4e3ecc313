// SPDX-License-Identifier: MIT
#include <functional>
#include <sstream>

#include "packaging/reference/formats.h"

namespace stowra_reference {

namespace {

constexpr char kBegin[] = R"(# SPDX-License-Identifier: MIT
# bash completion for PROGRAM

_FUNCTION() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command='' word words=''
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in COMMANDS) command=$word; break ;; esac
  done
  COMPREPLY=()
)";

// An empty reply makes bash complete file names, unless that is switched off.
constexpr char kEnd[] = R"(  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -o default -F _FUNCTION PROGRAM
)";

std::string Quoted(const std::string& words) { return "'" + words + "'"; }

// "'search':'--cacert'", a pattern of the option below the command.
std::string Pattern(const Command& command, const std::string& option, bool top) {
  return Quoted(top ? "" : command.name) + ":" + Quoted(option);
}

void WriteCase(std::ostream& script, const std::vector<std::string>& patterns,
               const std::string& action) {
  if (!patterns.empty()) script << "    " << Joined(patterns, " | ") << ") " << action << " ;;\n";
}

// Completes the value of an option that takes one.
void WriteValues(std::ostream& script, const Command& command, bool top) {
  std::vector<std::string> files;
  std::vector<std::string> others;
  for (const Argument& option : command.options) {
    if (option.values.empty()) continue;
    std::vector<std::string> patterns;
    for (const std::string& name : option.names) patterns.push_back(Pattern(command, name, top));
    if (!option.choices.empty()) {
      WriteCase(script, patterns, "words=" + Quoted(Joined(option.choices, " ")));
      continue;
    }
    std::vector<std::string>& kind = option.TakesFile() ? files : others;
    kind.insert(kind.end(), patterns.begin(), patterns.end());
  }
  WriteCase(script, files, "return");
  WriteCase(script, others, "compopt +o default 2>/dev/null; return");
}

bool TakesFile(const Command& command) {
  for (const Argument& positional : command.positionals) {
    if (positional.TakesFile()) return true;
  }
  return false;
}

void WriteWords(std::ostream& script, const Command& command, bool top) {
  std::vector<std::string> words;
  for (const Argument& option : command.options) {
    words.insert(words.end(), option.names.begin(), option.names.end());
  }
  script << "    " << Quoted(top ? "" : command.name) << ":-*) words=" << Quoted(Joined(words, " "))
         << " ;;\n";
  if (!TakesFile(command)) {
    words.clear();
    for (const Command& below : command.commands) words.push_back(below.name);
    script << "    " << Quoted(top ? "" : command.name)
           << ":*) words=" << Quoted(Joined(words, " ")) << "; compopt +o default 2>/dev/null ;;\n";
  }
}

void ForEach(const Command& program, const std::function<void(const Command&, bool)>& write) {
  write(program, true);
  for (const Command& command : program.commands) write(command, false);
}

}  // namespace

std::string BashCompletion(const Command& program) {
  std::ostringstream script;
  script << kBegin << "  case $command:$previous in\n";
  ForEach(program, [&](const Command& command, bool top) { WriteValues(script, command, top); });
  script << "  esac\n  [ -n \"$words\" ] || case $command:$current in\n";
  ForEach(program, [&](const Command& command, bool top) { WriteWords(script, command, top); });
  script << "  esac\n" << kEnd;

  std::vector<std::string> names;
  for (const Command& command : program.commands) names.push_back(command.name);
  std::string text = Replaced(script.str(), "COMMANDS)", Joined(names, " | ") + ")");
  if (names.empty()) {
    text = Replaced(text, "    case $word in ) command=$word; break ;; esac\n", "    :\n");
  }
  text = Replaced(text, "_FUNCTION", "_" + Replaced(program.name, "-", "_"));
  return Replaced(text, "PROGRAM", program.name);
}

}  // namespace stowra_reference
