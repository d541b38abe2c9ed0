#pragma once

namespace brindlecast {

// Commands of WM_COMMAND. The 5000 family comes from menus, the 6000 family from keys.
enum CommandId : int {
    kCommandStop = 5004,
    kCommandExit = 5022,
    kCommandKeyTogglePlay = 6001,
    kCommandKeyStepBackward = 6002,
    kCommandKeyStepForward = 6003,
    kCommandKeyOpen = 6040,
    kCommandKeyEscape = 6042,
};

} // namespace brindlecast
