// The Moves menu and the toolbar: what a player can do about the moves, and when.
//
// Three states: none possible, the engine thinks (it can only be stopped), idle (all but stopping).
#pragma once

#include "platform/Form.h"

#include <array>

namespace quarnel {

/// Indexes of SubMovesMenu.
enum MovesItem {
    BackOneItem = 0,
    ForwardOneItem,
    BackToStartItem,
    ForwardToEndItem,
    MovesSeparator,
    MoveNowItem,
    StopItem
};

/// The menu item that each toolbar button stands for.
inline constexpr std::array<MovesItem, 6> ItemOfButton{BackToStartItem,  BackOneItem, ForwardOneItem,
                                                       ForwardToEndItem, MoveNowItem, StopItem};

struct MoveControls {
    MenuItem MovesMenu{"MovesMenu", u"Moves"};
    std::array<MenuItem, 7> SubMovesMenu{{{"SubMovesMenu(0)", u"Back up one move", u"Ctrl+B"},
                                          {"SubMovesMenu(1)", u"Forward one move", u"Ctrl+F"},
                                          {"SubMovesMenu(2)", u"Back to start", u"Ctrl+S"},
                                          {"SubMovesMenu(3)", u"Forward to end", u"Ctrl+E"},
                                          {"SubMovesMenu(4)", u"-"},
                                          {"SubMovesMenu(5)", u"Move now", u"Ctrl+M"},
                                          {"SubMovesMenu(6)", u"Stop thinking", u"Ctrl+H"}}};

    /// The toolbar's buttons.
    std::array<Control, 6> poke{{{ControlKind::Image, "poke(0)"},
                                 {ControlKind::Image, "poke(1)"},
                                 {ControlKind::Image, "poke(2)"},
                                 {ControlKind::Image, "poke(3)"},
                                 {ControlKind::Image, "poke(4)"},
                                 {ControlKind::Image, "poke(5)"}}};

    MoveControls();

    bool MoveNowEnabled() const { return SubMovesMenu[MoveNowItem].Enabled; }

    /// Nothing can be done: all items disabled, all buttons hidden.
    void DisableMoveControls();
    /// The looks of the thinking and of the idle state, flags apart (EngineControl).
    void ShowThinking();
    void ShowIdle();
    void DisableStop();
};

} // namespace quarnel
