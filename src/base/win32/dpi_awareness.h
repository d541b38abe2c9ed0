#pragma once

namespace brindlecast {

// Asks for per-monitor awareness by the newest call that the system has; where it has none, or refuses, the
// process stays as it is. Before the first window.
void MakeProcessDpiAware();

} // namespace brindlecast
