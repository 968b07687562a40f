// Freedesktop key files (desktop entries, mimeapps.list) as the file association reads and
// changes them: a value set is the value read back, and setting it again changes nothing.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "desktop/key_file.h"

using namespace korvatek;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    static const std::pair<const char*, const char*> kEntries[] = {
        {"Desktop Entry", "MimeType"}, {"Desktop Entry", "Exec"}, {"Default Applications", "application/x-gpf2"}};
    for (const auto& [group, key] : kEntries) {
        const auto before = settings::keyFileValue(text, group, key);
        const std::string value = before.value_or("") + "korvatek.desktop;";
        const std::string changed = settings::setKeyFileValue(text, group, key, value);
        fuzz::check(settings::keyFileValue(changed, group, key) == value, "a value set reads back");
        fuzz::check(settings::setKeyFileValue(changed, group, key, value) == changed,
                    "setting it again changes nothing");
    }
    return 0;
}
