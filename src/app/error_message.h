#pragma once
// What the person is told about an error: the message-table row for each error code.

#include <string>

#include "app/message_key.h"
#include "app/message_table.h"
#include "base/result.h"

namespace korvatek::app {

settings::MessageKey messageFor(ErrorCode code);

// The error's message in the table's language, its limit filled in and its detail appended.
std::string errorText(const settings::MessageTable& messages, const Error& error);

}  // namespace korvatek::app
