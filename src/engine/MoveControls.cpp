#include "engine/MoveControls.h"

namespace quarnel {

namespace {

constexpr std::size_t StopButton = 5;

} // namespace

MoveControls::MoveControls() {
    for (MenuItem& item : SubMovesMenu) MovesMenu.Add(item);
    SubMovesMenu[StopItem].Enabled = false;

    // A tooltip says the same as the menu item that the button stands for.
    for (std::size_t i = 0; i < poke.size(); ++i) poke[i].ToolTip = SubMovesMenu[ItemOfButton[i]].Caption.Get();
}

void MoveControls::DisableMoveControls() {
    for (MenuItem& item : SubMovesMenu) item.Enabled = false;
    for (Control& button : poke) button.Visible = false;
}

void MoveControls::ShowThinking() {
    DisableMoveControls();
    SubMovesMenu[StopItem].Enabled = true;
    poke[StopButton].Visible = true;
}

void MoveControls::ShowIdle() {
    for (MenuItem& item : SubMovesMenu) item.Enabled = &item != &SubMovesMenu[StopItem];
    for (Control& button : poke) button.Visible = &button != &poke[StopButton];
}

void MoveControls::DisableStop() {
    SubMovesMenu[StopItem].Enabled = false;
    poke[StopButton].Visible = false;
}

} // namespace quarnel
