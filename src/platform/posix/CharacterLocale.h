// The locale for characters, as the C library would choose it. Any thread, as long as none changes the environment.
#pragma once

#include <cstdlib>
#include <string>

namespace quarnel {

/// A name such as "cs_CZ.UTF-8"; empty where the environment says nothing.
inline std::string CharacterLocale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

} // namespace quarnel
