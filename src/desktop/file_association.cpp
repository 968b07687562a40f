#include "desktop/file_association.h"

#include <algorithm>

namespace korvatek::settings {

CFileAssociation gpfAssociation(const std::string& extension, const std::string& executablePath) {
    CFileAssociation association;
    association.extension = extension;
    association.fileType = kGpfFileType;
    association.openCommand = executablePath;
    association.defaultIcon = executablePath + ",0";
    association.newFileKind = kNullFileKind;
    association.description = kGpfDescription;
    return association;
}

std::string expandDefaultIcon(const std::string& icon, const std::string& executablePath) {
    const bool bareNumber =
        !icon.empty() && std::all_of(icon.begin(), icon.end(), [](char c) { return c >= '0' && c <= '9'; });
    return bareNumber ? executablePath + "," + icon : icon;
}

std::string cutToCommandBuffer(std::string command) {
    if (command.size() >= kAssociatedCommandBuffer) command.resize(kAssociatedCommandBuffer - 1);
    return command;
}

void registerExtension(AssociationStore& store, const std::string& extension, const std::string& executablePath) {
    const CFileAssociation association = gpfAssociation(extension, executablePath);
    store.CreateAssociation(association);
    // CreateAssociation wrote the bare executable as the "open" command; the file argument
    // is added here, and only this final form counts.
    store.CreateContextMenuItem(association.fileType, "open", store.openCommandFor(executablePath));
}

bool isAssociated(const AssociationStore& store, const std::string& extension, const std::string& executablePath) {
    return store.GetAssociatedCommand(extension) == store.openCommandFor(executablePath);
}

}  // namespace korvatek::settings
