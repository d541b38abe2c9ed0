#pragma once

#include <wrl/client.h>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

} // namespace brindlecast
