#pragma once
// File association: the options dialog registers the program as the handler of ".gpf" and
// ".gpf2" files and shows whether it already is. CFileAssociation holds what one extension's
// association says; an AssociationStore keeps it where the desktop looks for it (the
// registry's classes on Windows, the freedesktop MIME and desktop-entry files elsewhere).

#include <cstddef>
#include <string>

namespace korvatek::settings {

// Both extensions share one file type, on purpose.
inline constexpr const char* kGpfFileType = "gpffile";
inline constexpr const char* kGpfDescription = "Graphic Patch File";
inline constexpr const char* kNullFileKind = "NullFile";
inline constexpr const char* kGpfExtension = ".gpf";
inline constexpr const char* kGpf2Extension = ".gpf2";

// The associated command is read into a buffer of this many characters, terminator included:
// a longer command comes back cut and never matches.
inline constexpr std::size_t kAssociatedCommandBuffer = 128;

inline constexpr const char* kUnregisteredExtension = "Unregistered file extension ";
inline constexpr const char* kTypeWithoutProgram = "File type is not associated with a program.";

struct CFileAssociation {
    std::string extension;    // ".gpf", with the dot
    std::string fileType;     // "gpffile"
    std::string description;  // "Graphic Patch File"
    std::string openCommand;  // the executable path
    std::string defaultIcon;  // the executable path + ",0"; a bare number n means the executable's icon n
    std::string newFileKind;  // "NullFile": the desktop offers an empty file of the type
    std::string newFileData;
};

class AssociationStore {
public:
    virtual ~AssociationStore() = default;

    // Writes the association; nothing at all when the extension or the file type is empty.
    virtual void CreateAssociation(const CFileAssociation& association) = 0;
    // Sets the command of a verb ("open") of the file type.
    virtual void CreateContextMenuItem(const std::string& fileType, const std::string& verb,
                                       const std::string& command) = 0;
    // The "open" command registered for an extension, cut to the read buffer, or a text that
    // says why there is none (kUnregisteredExtension + extension, kTypeWithoutProgram).
    virtual std::string GetAssociatedCommand(const std::string& extension) const = 0;
    // The "open" command this program registers for itself: the executable and where the
    // file name goes.
    virtual std::string openCommandFor(const std::string& executablePath) const = 0;
};

// The association the options dialog fills in for an extension.
CFileAssociation gpfAssociation(const std::string& extension, const std::string& executablePath);

// A default icon that is a bare number n stands for the executable's icon n.
std::string expandDefaultIcon(const std::string& icon, const std::string& executablePath);

// Keeps at most kAssociatedCommandBuffer - 1 characters, as the read buffer does.
std::string cutToCommandBuffer(std::string command);

// The options dialog's apply step for one checked box: the association, then the "open" verb
// with the file argument.
void registerExtension(AssociationStore& store, const std::string& extension, const std::string& executablePath);

// True when the extension's registered command is exactly the one this program registers.
bool isAssociated(const AssociationStore& store, const std::string& extension, const std::string& executablePath);

}  // namespace korvatek::settings
