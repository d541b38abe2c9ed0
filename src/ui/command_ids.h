#pragma once

namespace brindlecast {

// Commands of WM_COMMAND that are named elsewhere than in the table of commands. The 5000 family comes from
// menus, the 6000 family from keys.
enum CommandId : int {
    kCommandStop = 5004,
    kCommandExit = 5022,
    kCommandRecentFirst = 5100, // one for each of the recent files
    kCommandClearRecent = 5110,
    kCommandKeyUpright = 6010,
    kCommandKeyTurnedRight = 6011,
    kCommandKeyTurnedLeft = 6013,
};

} // namespace brindlecast
