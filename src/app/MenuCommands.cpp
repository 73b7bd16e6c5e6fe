#include "app/MenuCommands.h"

#include "base/Step.h"

namespace quarnel {

namespace {

constexpr TextView HomePage = u"https://www.quarnel-chess.example/";

} // namespace

MenuCommands::MenuCommands(BoardWindow& board, ZoomMenu& zoom, EngineSettings& settings, CtrlPanel& panel,
                           Navigation& steps, GameFiles& files, ControllerState& controller, Desktop& desktop)
    : board_(board), panel_(panel), steps_(steps), files_(files), controller_(controller), desktop_(desktop) {
    for (MenuItem& item : zoom.vw) board_.ZoomSubmenu.Add(item);
    board_.OptionsMenu.Add(board_.ZoomSubmenu);
    board_.OptionsMenu.Add(settings.StrengthSubmenu);
    board_.OptionsMenu.Add(settings.pnd);
    board_.OptionsMenu.Add(board_.PromotionSubmenu);
    for (MenuItem* menu : {&board_.FileMenu, &board_.Moves.MovesMenu, &board_.OptionsMenu, &board_.hlp, &board_.hpg}) {
        board_.Window.AddMenu(*menu);
    }
    ConnectHandlers();
}

void MenuCommands::ConnectHandlers() {
    ConnectEach(board_.SubFileMenu, [this](int index) { SubFileMenu_Click(index); });
    ConnectEach(board_.Moves.SubMovesMenu, [this](int index) { SubMovesMenu_Click(index); });
    ConnectEach(board_.Moves.poke, [this](int index) { poke_Click(index); });
    ConnectEach(board_.pprom, [this](int index) { pprom_Click(index); });
    board_.hlp.OnClick = [this] { hlp_Click(); };
    board_.hpg.OnClick = [this] { hpg_Click(); };
    board_.ctrl_SkinableButton1.Click = [this] { ctrl_SkinableButton1_Click(); };
}

void MenuCommands::SubFileMenu_Click(int index) {
    switch (index) {
    case 0:
        panel_.NewGameAsWhite();
        break;
    case 1:
        panel_.NewGameAsBlack();
        break;
    case 3:
        files_.SaveGame();
        break;
    case 4:
        files_.LoadGame();
        break;
    default:
        break;
    }
}

void MenuCommands::SubMovesMenu_Click(int index) {
    for (MenuItem& item : board_.Moves.SubMovesMenu) item.Checked = false;
    Step(ElementAt(board_.Moves.SubMovesMenu, index), [](MenuItem& item) { item.Checked = true; });
    static constexpr std::array<std::int16_t, 7> CodeOfItem{Back, Forward, ToStart, ToEnd, 0, MoveNow, StopThinking};
    Step(ElementAt(CodeOfItem, index), [&](std::int16_t code) { steps_.MoveTAB(code, False); });
}

void MenuCommands::poke_Click(int index) {
    Step(ElementAt(ItemOfButton, index), [&](int item) { SubMovesMenu_Click(item); });
}

void MenuCommands::pprom_Click(int index) {
    for (MenuItem& item : board_.pprom) item.Checked = false;
    Step(ElementAt(board_.pprom, index), [](MenuItem& item) { item.Checked = true; });
    controller_.PromotePiece = static_cast<std::uint8_t>(index + Knight);
}

void MenuCommands::hlp_Click() {
    board_.Picture1.Visible = true;
}

void MenuCommands::ctrl_SkinableButton1_Click() {
    board_.Picture1.Visible = false;
}

void MenuCommands::hpg_Click() {
    desktop_.OpenAddress(Text(HomePage));
}

} // namespace quarnel
