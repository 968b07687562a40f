#include "json_output.h"

#include <cstdio>

namespace korvatek::cli {

bool printJson(const Json& document) {
    // Text in the document is UTF-8 already (paths too); bytes that are not are replaced rather
    // than thrown over, so a strange file name cannot stop a listing half-way.
    const std::string text = document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

}  // namespace korvatek::cli
