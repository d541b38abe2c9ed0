#pragma once

namespace brindlecast {

// True when the process runs under Wine. Asked only where Wine needs another way than Windows; each such
// place says why.
[[nodiscard]] bool IsRunningUnderWine();

// For tests: forces the answer on, off, or back to what is true.
enum class WineAnswer { Real, Forced, Denied };
void SetWineAnswerForTest(WineAnswer answer);

} // namespace brindlecast
