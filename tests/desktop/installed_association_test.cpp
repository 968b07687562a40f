// An installed Korvatek brings its MIME types and desktop entry: choosing it as the program for
// GPF files then writes only the user's default, and the check boxes read that back.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "desktop/freedesktop_association.h"
#include "support/flash_builder.h"

namespace korvatek::settings {
namespace {

namespace fs = std::filesystem;

void put(const fs::path& path, const std::string& text) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

TEST(InstalledAssociation, writesOnlyTheDefaultAndReadsTheInstalledEntry) {
    const fs::path folder = testing::testFolder();
    const fs::path installed = folder / "usr" / "share";
    EXPECT_FALSE(FreedesktopAssociationStore::holdsInstalledData(installed));
    put(installed / "mime" / "packages" / "korvatek.xml",
        "<mime-info><mime-type type=\"text/x-vklay-patch\"><glob pattern=\"*.vkp\"/></mime-type>"
        "<mime-type type=\"application/x-gpffile\"><glob pattern=\"*.gpf\"/><glob pattern=\"*.gpf2\"/></mime-type></mime-info>");
    put(installed / "applications" / "korvatek.desktop", "[Desktop Entry]\nType=Application\nExec=korvatek %f\n");
    ASSERT_TRUE(FreedesktopAssociationStore::holdsInstalledData(installed));

    FreedesktopAssociationStore store(folder / "data", folder / "config");
    store.useInstalledData(installed);
    EXPECT_EQ(store.openCommandFor("/usr/bin/korvatek"), "korvatek %f");
    EXPECT_EQ(store.GetAssociatedCommand(".gpf2"), kTypeWithoutProgram);
    store.CreateAssociation(gpfAssociation(".gpf2", "/usr/bin/korvatek"));
    EXPECT_EQ(store.GetAssociatedCommand(".gpf2"), "korvatek %f");
    EXPECT_EQ(store.GetAssociatedCommand(".png"), std::string(kUnregisteredExtension) + ".png");
    EXPECT_FALSE(fs::exists(folder / "data"));  // no per-user MIME package, no per-user entry
    EXPECT_TRUE(fs::exists(folder / "config" / "mimeapps.list"));
}

}  // namespace
}  // namespace korvatek::settings
