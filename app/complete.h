// What the prompt offers when Tab is pressed.
#pragma once
#include <string>
#include <vector>

namespace app {

/// Whole words that begin with `word`, sorted, each once. `before` is the line up to the word.
/// MEL: commands, built-in functions and nodes; behind a node's name and a full stop its attributes.
/// Python: the same names as attributes of a module of commands, nodes and attributes inside quotes, else what Python knows.
std::vector<std::string> completions(const std::string& before, const std::string& word, bool python);

}  // namespace app
