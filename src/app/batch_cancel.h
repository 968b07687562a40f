#pragma once
// Stopping a batch between two items when the person asked for it: what was done stays done
// (written files stay, collected replacements stay in the patch), and a message says how far
// the batch got instead of the success message.

#include "app/message_key.h"

namespace korvatek::app {

class Workspace;

// Asks the interface whether the person cancelled. When so, tells "Cancelled after <done> of
// <total> ..." with the words of `what` (a message with %1 and %2), marks the command as not
// completed and returns true: the caller returns at once, after restoring its own state.
bool batchCancelled(Workspace& ws, int done, int total, settings::MessageKey what);

}  // namespace korvatek::app
