#include "platform/SavedSettings.h"

#include "base/ProgramTitle.h"

namespace quarnel {

namespace {

constexpr TextView Section = u"Settings";

} // namespace

Text SavedSetting(Desktop& desktop, const Text& key, const Text& defaultValue) {
    return desktop.ReadSetting(Text(ProgramTitle), Text(Section), key, defaultValue);
}

void SaveSetting(Desktop& desktop, const Text& key, const Text& value) {
    desktop.WriteSetting(Text(ProgramTitle), Text(Section), key, value);
}

} // namespace quarnel
