#include "arguments.h"

namespace korvatek::cli {

std::optional<std::string> Arguments::value(const std::string& option) const {
    const auto it = values.find(option);
    if (it == values.end()) return std::nullopt;
    return it->second;
}

Arguments parseArguments(const std::vector<std::string>& words, const std::set<std::string>& valueOptions,
                         const std::set<std::string>& flagOptions, const std::set<std::string>& repeatable) {
    Arguments args;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const bool looksLikeOption =
            !optionsEnded && word.size() > 1 && word[0] == '-' && !std::isdigit(static_cast<unsigned char>(word[1]));
        if (!looksLikeOption) {
            if (word.empty()) {
                args.error = "an empty text where a file or a number belongs";
                return args;
            }
            args.positional.push_back(word);
            args.ordered.emplace_back(std::string(), word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
        } else if (valueOptions.count(word) || repeatable.count(word)) {
            if (i + 1 >= words.size()) {
                args.error = word + " needs a value";
                return args;
            }
            const std::string& value = words[++i];
            if (value.empty()) {
                args.error = word + " needs a value, not an empty text";
                return args;
            }
            if (repeatable.count(word)) {
                args.ordered.emplace_back(word, value);
            } else if (!args.values.emplace(word, value).second) {
                args.error = word + " may be given only once";
                return args;
            }
        } else if (flagOptions.count(word)) {
            args.flags.insert(word);
        } else {
            args.error = "unknown option " + word;
            return args;
        }
    }
    return args;
}

std::optional<int> parseNumber(const std::string& text) {
    if (text.empty() || text.size() > 9) return std::nullopt;
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

}  // namespace korvatek::cli
