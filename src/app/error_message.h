#pragma once
// What the person is told about an error: the message-table row for each error code.

#include "app/message_key.h"
#include "base/result.h"

namespace korvatek::app {

settings::MessageKey messageFor(ErrorCode code);

}  // namespace korvatek::app
