// Runs a fuzz target's function over saved inputs without libFuzzer, so that the ordinary test
// run replays every crash input once found. Arguments are files or folders (every regular file
// in a folder, in name order); a folder that does not exist holds no inputs.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "base/file_io.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
// Only some targets prepare anything; the build names those (no weak symbols, which not every
// compiler and object format has).
#ifdef KORVATEK_FUZZ_HAS_INITIALIZE
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
#endif

namespace {

int replay(std::vector<std::string> arguments) {
    namespace fs = std::filesystem;
#ifdef KORVATEK_FUZZ_HAS_INITIALIZE
    std::vector<char*> pointers;
    for (std::string& a : arguments) pointers.push_back(a.data());
    pointers.push_back(nullptr);
    int argc = static_cast<int>(arguments.size());
    char** argv = pointers.data();
    LLVMFuzzerInitialize(&argc, &argv);
#endif
    std::vector<fs::path> inputs;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const fs::path arg = korvatek::app::toPath(arguments[i]);
        std::error_code ec;
        if (fs::is_directory(arg, ec)) {
            for (const auto& entry : fs::directory_iterator(arg))
                if (entry.is_regular_file()) inputs.push_back(entry.path());
        } else if (fs::is_regular_file(arg, ec)) {
            inputs.push_back(arg);
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto& path : inputs) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        std::printf("replay %s (%zu bytes)\n", korvatek::app::pathText(path).c_str(), bytes.size());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", inputs.size());
    return 0;
}

}  // namespace

#ifdef _WIN32
// The arguments as the system holds them (UTF-16), so a folder with any name is found.
int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> arguments;
    for (int i = 0; i < argc; ++i) arguments.push_back(korvatek::app::pathText(std::filesystem::path(argv[i])));
    return replay(std::move(arguments));
}
#else
int main(int argc, char** argv) { return replay(std::vector<std::string>(argv, argv + argc)); }
#endif
