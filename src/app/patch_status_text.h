#pragma once
// The words for where a patch stands, in the table's language: the window's status table and
// the command line's status listing say the same.

#include <string>

#include "app/message_table.h"
#include "edit/patch_files.h"

namespace korvatek::app {

std::string lineStateText(const settings::MessageTable& messages, patch::LineState state);
std::string patchStateText(const settings::MessageTable& messages, patch::PatchState state);
// "3 applied, 1 not applied, 0 conflicting, 0 outside the fullflash"
std::string statusCountsText(const settings::MessageTable& messages, const patch::PatchStatus& status);
// "<name>: partly applied (3 applied, 1 not applied, ...)"
std::string patchSummaryText(const settings::MessageTable& messages, const std::string& name,
                             const patch::PatchStatus& status);
// "a.vkp line 3 and b.vkp line 7 write different bytes at 0x1320000"
std::string clashText(const settings::MessageTable& messages, const patch::PatchClash& clash,
                      const std::string& firstName, const std::string& secondName);
// The file name of a patch path, as the status texts name a patch.
std::string patchName(const std::string& path);

}  // namespace korvatek::app
