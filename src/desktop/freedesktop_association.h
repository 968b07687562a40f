#pragma once
// File association the freedesktop way: a MIME type whose globs name the extensions (one
// shared-mime-info package per extension in <data home>/mime/packages), a desktop entry whose
// Exec line is the "open" command (<data home>/applications/korvatek.desktop), and that entry
// as the type's default application (<config home>/mimeapps.list). The file type "gpffile"
// becomes the MIME type "application/x-gpffile". Failures are not reported: a file that could
// not be written simply reads back as not associated.

#include <filesystem>
#include <functional>
#include <string>

#include "desktop/file_association.h"

namespace korvatek::settings {

inline constexpr const char* kDesktopEntryName = "korvatek.desktop";

class FreedesktopAssociationStore : public AssociationStore {
public:
    // dataHome: $XDG_DATA_HOME (by default ~/.local/share); configHome: $XDG_CONFIG_HOME
    // (by default ~/.config).
    FreedesktopAssociationStore(std::filesystem::path dataHome, std::filesystem::path configHome);

    void CreateAssociation(const CFileAssociation& association) override;
    void CreateContextMenuItem(const std::string& fileType, const std::string& verb,
                               const std::string& command) override;
    std::string GetAssociatedCommand(const std::string& extension) const override;
    // The executable as an Exec argument, then "%f".
    std::string openCommandFor(const std::string& executablePath) const override;

    static std::string mimeTypeOf(const std::string& fileType) { return "application/x-" + fileType; }
    std::filesystem::path packagePath(const std::string& extension) const;
    std::filesystem::path desktopEntryPath() const;
    std::filesystem::path mimeAppsPath() const;

    // Called with <data home>/mime after a package was written, so that the MIME cache can be
    // rebuilt (the window runs update-mime-database there).
    std::function<void(const std::filesystem::path&)> onPackagesChanged;

    // An installed Korvatek (its data folder, e.g. /usr/share, holding the MIME package and the
    // desktop entry) brings the file types and the entry with it: then only the user's default
    // program is written, and the entry's Exec line is the open command.
    void useInstalledData(std::filesystem::path dataDir) { m_installedData = std::move(dataDir); }
    static bool holdsInstalledData(const std::filesystem::path& dataDir);

private:
    std::filesystem::path installedEntryPath() const;
    std::filesystem::path m_dataHome;
    std::filesystem::path m_configHome;
    std::filesystem::path m_installedData;  // empty for a build run where it was made
};

// A desktop entry's Exec argument for a path: quoted and escaped as key files and Exec lines
// require when the path holds a reserved character, as it stands otherwise.
std::string desktopExecArgument(const std::string& path);

}  // namespace korvatek::settings
