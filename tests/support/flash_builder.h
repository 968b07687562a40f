#pragma once
// Builds small synthetic fullflash images for the tests: the identification bytes, a font
// selector and picture records with their data where the test wants them.

#include <cstdint>
#include <string>

#include "base/bytes.h"

namespace korvatek::testing {

class FlashBuilder {
public:
    // A 32 MiB image of zeros with model "E71", pack "42" and the font array of the
    // "lg91_E71_v42" firmware, two fonts.
    FlashBuilder();

    FlashBuilder& model(const std::string& text);        // 4 bytes at the model offset
    FlashBuilder& pack(const std::string& text);         // 2 bytes at the pack offset
    FlashBuilder& fontArray(std::uint32_t offset, int count);
    // The index record of picture n and, when data is given, the data at dataOffset.
    FlashBuilder& picture(int n, int width, int height, std::uint8_t type, std::uint32_t dataOffset,
                          const Bytes& data = {});
    FlashBuilder& put(std::uint32_t offset, const Bytes& bytes);
    FlashBuilder& putU32(std::uint32_t offset, std::uint32_t value);

    const Bytes& bytes() const { return m_image; }
    // Writes the image into a file of the test's temporary folder and returns its path.
    std::string writeTo(const std::string& name) const;

private:
    Bytes m_image;
};

// A fresh folder below the system's temporary folder, named after the running test.
std::string testFolder();

Bytes readAll(const std::string& path);

}  // namespace korvatek::testing
