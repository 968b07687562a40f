#pragma once
// What the person is told about an error: the message-table row for each error code.

#include <string>

#include "app/message_key.h"
#include "app/message_table.h"
#include "base/result.h"
#include "edit/patch_files.h"

namespace korvatek::app {

settings::MessageKey messageFor(ErrorCode code);

// Why a patch line could not be read, in the table's language.
std::string lineFaultText(const settings::MessageTable& messages, patch::LineFault fault);
// " (line 5)": the patch line a message is about.
std::string atLineText(const settings::MessageTable& messages, int line);

// What is wrong with a patch, one line per problem (joined by carriage returns); empty when it
// can be applied. Old bytes that differ are left out when only the patch itself is in question
// (a status tells them line by line); addresses past the end are always in.
enum class OldBytes { Told, NotTold };
std::string patchProblemsText(const settings::MessageTable& messages, const edit::PatchCheck& check,
                              OldBytes oldBytes = OldBytes::Told);

// The error's message in the table's language, its limit filled in and its detail appended.
std::string errorText(const settings::MessageTable& messages, const Error& error);

}  // namespace korvatek::app
