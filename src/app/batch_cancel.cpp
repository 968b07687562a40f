#include "app/batch_cancel.h"

#include <string>

#include "app/workspace.h"

namespace korvatek::app {

bool batchCancelled(Workspace& ws, int done, int total, settings::MessageKey what) {
    if (!ws.ui.cancelRequested()) return false;
    ws.showMessage(settings::fillIn(settings::fillIn(ws.msg(what), "%1", std::to_string(done)), "%2", std::to_string(total)));
    ws.ActionFailed = true;
    return true;
}

}  // namespace korvatek::app
