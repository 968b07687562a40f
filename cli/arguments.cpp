#include "arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace korvatek::cli {

std::optional<std::string> Arguments::value(const std::string& option) const {
    const auto it = values.find(option);
    if (it == values.end()) return std::nullopt;
    return it->second;
}

Arguments parseArguments(const std::string& title, const std::string& usage, const std::vector<DeclaredOption>& options,
                         const std::vector<std::string>& words) {
    Arguments args;
    CLI::App app{title + "\nusage: korvatek-cli " + usage + "\n", "korvatek-cli " + usage.substr(0, usage.find(' '))};
    // "/x" is a path on every system, never an option written the Windows way.
    app.allow_windows_style_options(false);
    std::vector<std::string> positional;
    app.add_option("ARGS", positional, "see the usage line");
    std::vector<std::pair<CLI::Option*, const DeclaredOption*>> declared;
    std::map<std::string, std::vector<std::string>> repeated;  // map nodes stay put: CLI11 keeps references
    std::map<std::string, std::string> single;
    std::map<std::string, bool> flags;
    for (const DeclaredOption& declaration : options) {
        CLI::Option* option = nullptr;
        switch (declaration.kind) {
            case DeclaredOption::Kind::Value:
                option = app.add_option(declaration.name, single[declaration.name], declaration.description);
                break;
            case DeclaredOption::Kind::Flag:
                option = app.add_flag(declaration.name, flags[declaration.name], declaration.description);
                break;
            case DeclaredOption::Kind::Repeated: {
                option = app.add_option(declaration.name, repeated[declaration.name], declaration.description)
                             ->expected(1)
                             ->allow_extra_args(false)
                             ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
                break;
            }
        }
        if (declaration.kind != DeclaredOption::Kind::Flag) option->type_name(declaration.valueName);
        declared.emplace_back(option, &declaration);
    }
    std::vector<std::string> reversed(words.rbegin(), words.rend());  // CLI11 takes them last first
    try {
        app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
        args.help = app.help();
        return args;
    } catch (const CLI::ParseError& e) {
        args.error = e.what();
        return args;
    }
    // The order: positional words and repeated options as they came.
    std::map<const CLI::Option*, std::size_t> next;
    std::size_t positionalIndex = 0;
    for (const CLI::Option* option : app.parse_order()) {
        if (option->get_name() == "ARGS") {
            args.ordered.emplace_back(std::string(), positional[positionalIndex++]);
            continue;
        }
        for (const auto& [declaredOption, declaration] : declared) {
            if (declaredOption != option || declaration->kind != DeclaredOption::Kind::Repeated) continue;
            const auto results = option->results();
            args.ordered.emplace_back(declaration->name, results[next[option]++]);
        }
    }
    args.positional = positional;
    for (const auto& [option, declaration] : declared) {
        if (option->count() == 0) continue;
        if (declaration->kind == DeclaredOption::Kind::Flag) args.flags.insert(declaration->name);
        if (declaration->kind == DeclaredOption::Kind::Value) args.values[declaration->name] = single[declaration->name];
    }
    // Empty texts where a file, a number or a value belongs.
    for (const auto& [option, word] : args.ordered) {
        if (word.empty()) {
            args.error = option.empty() ? "an empty text where a file or a number belongs"
                                        : option + " needs a value, not an empty text";
            return args;
        }
    }
    for (const auto& [option, word] : args.values) {
        if (word.empty()) {
            args.error = option + " needs a value, not an empty text";
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
