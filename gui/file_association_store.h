#pragma once
// Where this desktop keeps file associations: the registry's classes of the current user on
// Windows, the freedesktop MIME and desktop-entry files elsewhere.

#include <memory>

#include "desktop/file_association.h"

namespace korvatek::gui {

std::unique_ptr<settings::AssociationStore> makeAssociationStore();

#ifdef _WIN32
// HKEY_CURRENT_USER\Software\Classes is written (no administrator rights needed); the
// associated command is read back from HKEY_CLASSES_ROOT, the merged view the shell uses. A
// test names a key of its own instead (written and read), so the person's own stay untouched.
std::unique_ptr<settings::AssociationStore> makeRegistryAssociationStore(const std::string& executablePath,
                                                                         const std::string& classesKey = {});
#endif

}  // namespace korvatek::gui
