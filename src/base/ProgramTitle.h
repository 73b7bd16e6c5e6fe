// The program's name, as its windows and message boxes show it and the settings store files it under.
#pragma once

#include "base/Text.h"

namespace quarnel {

inline constexpr TextView ProgramTitle = u"Quarnel Chess";

} // namespace quarnel
