#include "support/flash_builder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "firmware/layout.h"

namespace korvatek::testing {

using namespace korvatek::firmware;

FlashBuilder::FlashBuilder() : m_image(0x2000000, 0) {
    model("E71");
    pack("42");
    fontArray(kFontArrayE71v42, 2);
}

FlashBuilder& FlashBuilder::model(const std::string& text) {
    Bytes field(4, 0);
    for (std::size_t i = 0; i < text.size() && i < 4; ++i) field[i] = static_cast<std::uint8_t>(text[i]);
    return put(kModelOffset, field);
}

FlashBuilder& FlashBuilder::pack(const std::string& text) { return put(kLanguagePackOffset, bytesOf(text)); }

FlashBuilder& FlashBuilder::fontArray(std::uint32_t offset, int count) {
    putU32(kFontArrayPointerOffset, kPhoneAddressBase + offset);
    putU32(kFontAreaPointerOffset, kPhoneAddressBase + 0x1800000);
    return put(kFontCountOffset, Bytes{static_cast<std::uint8_t>(count)});
}

FlashBuilder& FlashBuilder::picture(int n, int width, int height, std::uint8_t type, std::uint32_t dataOffset,
                                    const Bytes& data) {
    Bytes record{static_cast<std::uint8_t>(width), static_cast<std::uint8_t>(width >> 8),
                 static_cast<std::uint8_t>(height), static_cast<std::uint8_t>(height >> 8), type, 0, 0, 0};
    const std::uint32_t address = kPhoneAddressBase + dataOffset;
    for (int i = 0; i < 4; ++i) record.push_back(static_cast<std::uint8_t>(address >> (8 * i)));
    put(kPictureTableOffset + static_cast<std::uint32_t>(n) * kPictureRecordSize, record);
    if (!data.empty()) put(dataOffset, data);
    return *this;
}

FlashBuilder& FlashBuilder::put(std::uint32_t offset, const Bytes& bytes) {
    for (std::size_t i = 0; i < bytes.size() && offset + i < m_image.size(); ++i) m_image[offset + i] = bytes[i];
    return *this;
}

FlashBuilder& FlashBuilder::putU32(std::uint32_t offset, std::uint32_t value) {
    return put(offset, Bytes{static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
                             static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)});
}

std::string FlashBuilder::writeTo(const std::string& name) const {
    const std::string path = testFolder() + "/" + name;
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(m_image.data()), static_cast<std::streamsize>(m_image.size()));
    return path;
}

std::string testFolder() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = info ? std::string(info->test_suite_name()) + "." + info->name() : "korvatek";
    for (char& c : name)
        if (c == '/') c = '_';
    const auto folder = std::filesystem::temp_directory_path() / ("korvatek-test-" + name);
    static std::string created;
    if (created != folder.string()) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        created = folder.string();
    }
    return folder.string();
}

Bytes readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

}  // namespace korvatek::testing
