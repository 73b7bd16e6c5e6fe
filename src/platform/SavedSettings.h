// The program's own settings in the desktop's store: texts by key, kept from run to run.
#pragma once

#include "platform/Desktop.h"

namespace quarnel {

/// The text stored under `key`, `defaultValue` where there is none. Letter case of the key does not count.
Text SavedSetting(Desktop& desktop, const Text& key, const Text& defaultValue);

/// Stores `value` at once.
void SaveSetting(Desktop& desktop, const Text& key, const Text& value);

} // namespace quarnel
