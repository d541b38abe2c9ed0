#include "app/next_action.h"

namespace brindlecast {

NextAction ChooseNextAction(const EndOfFile& end) {
    if (end.markA >= 1 && end.markB <= end.markA) {
        return NextAction::RepeatFromA;
    }
    if (!end.hasPlaylist) {
        return NextAction::Stop;
    }
    return end.playsGroup ? NextAction::PlayNextFavorite : NextAction::PlayNextItem;
}

} // namespace brindlecast
