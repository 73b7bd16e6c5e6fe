// What pieces are worth to the rules of thumb: exchanges on one square.
#pragma once

#include "quarnelchess/board/Types.h"

namespace quarnel::engine {

/// Centipawns, by kind; a capture of nothing is worth nothing. For ordering captures and static exchanges.
constexpr int ExchangeValue[7] = {100, 320, 330, 500, 950, 20000, 0};

} // namespace quarnel::engine
