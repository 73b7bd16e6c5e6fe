// Reads menus off their pixels: where the items are, which of them are checked and which are greyed.
#pragma once

#include "platform/Surface.h"

#include <vector>

namespace quarnel::xdriver {

struct MenuRow {
    int Middle = 0; ///< its height in the menu's window, pixels
    bool Separator = false;
    bool Checked = false;
    bool Enabled = false;
};

/// The rows of an open menu, top to bottom; none may be under the pointer.
std::vector<MenuRow> ReadMenu(const Surface& menu);

/// The captions' middles, left to right, in a menu bar of `height` pixels at the top of `window`.
std::vector<int> ReadMenuBar(const Surface& window, int height);

} // namespace quarnel::xdriver
