#pragma once
// The arguments of a command, read with CLI11 from the options its table entry declares.
// Positional words and the options that may repeat keep their order; "--" ends the options
// (every later word is positional, also one that starts with a dash); an option that takes one
// value may be given once; an empty value or an empty file argument is refused.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace korvatek::cli {

struct DeclaredOption {
    enum class Kind { Value, Flag, Repeated };
    const char* name;         // "-o", "--alpha"
    Kind kind;
    const char* description;  // for the generated help
    const char* valueName = "TEXT";
};

struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;  // "-o" -> path
    std::set<std::string> flags;                // "--alpha"
    // Positional words (option "") and the options that may repeat, in the order given.
    std::vector<std::pair<std::string, std::string>> ordered;
    std::string error;                          // non-empty when the words are off
    std::string help;                           // the generated help, when it was asked for

    bool has(const std::string& flag) const { return flags.count(flag) != 0; }
    std::optional<std::string> value(const std::string& option) const;
};

// Reads the words after the command name. `title` heads the generated help, `usage` follows
// "korvatek-cli ".
Arguments parseArguments(const std::string& title, const std::string& usage, const std::vector<DeclaredOption>& options,
                         const std::vector<std::string>& words);

// A picture or glyph number: decimal digits, possibly zero-padded.
std::optional<int> parseNumber(const std::string& text);

}  // namespace korvatek::cli
