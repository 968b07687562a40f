#pragma once
// A small argument reader: positional words and options, some of which take a value. "--" ends
// the options (every later word is positional, also one that starts with a dash); an option
// that takes one value may be given once; an empty value is refused.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace korvatek::cli {

struct Arguments {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values;  // "-o" -> path
    std::set<std::string> flags;                // "--alpha"
    // Positional words (option "") and the options that may repeat, in the order given.
    std::vector<std::pair<std::string, std::string>> ordered;
    std::string error;                          // non-empty when the words are off

    bool has(const std::string& flag) const { return flags.count(flag) != 0; }
    std::optional<std::string> value(const std::string& option) const;
};

// valueOptions take the next word; flagOptions stand alone; repeatable options keep their order.
Arguments parseArguments(const std::vector<std::string>& words, const std::set<std::string>& valueOptions,
                         const std::set<std::string>& flagOptions, const std::set<std::string>& repeatable = {});

// A picture or glyph number: decimal digits, possibly zero-padded.
std::optional<int> parseNumber(const std::string& text);

}  // namespace korvatek::cli
