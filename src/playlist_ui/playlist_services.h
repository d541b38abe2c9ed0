#pragma once

#include "base/settings_store.h"
#include "library/playlist_model.h"

namespace brindlecast {

// What the play list works with in the program: the user's files, shell links and library. `settings` must
// outlive the list.
[[nodiscard]] PlaylistServices SystemPlaylistServices(SettingsStore& settings);

} // namespace brindlecast
