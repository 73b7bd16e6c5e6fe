#include "app/FrmBoard.h"

#include "base/Numbers.h"
#include "base/Step.h"

#include <algorithm>
#include <cmath>

namespace quarnel {

namespace {

constexpr TextView HomePage = u"https://www.quarnel-chess.example/";
constexpr std::int16_t MostThreads = 8;
constexpr std::size_t FirstVariationRows = 101;

Text WelcomeText() {
    return u"  Quarnel Chess is a freeware, first released in 2009. You can play it versus computer with powerful and "
           u"quick artificial intelligence. "
           u"Simple interface also provides quick keyboard shortcuts for moves. You can easily adjust computer "
           u"strength and window size. If you want computer can make a move instead of you by entering CTRL+M. "
           u"You can save and restore game at current position. Saved games can be used for later processing. "
           u"Their files are user friendly and ready for printing. "
           u"\r\n"
           u"  Good luck. Have a fun."
           u"\r\n\r\n" +
           Text(28, u' ') + u"The Quarnel Chess team";
}

// Gives each element of `items` the handler `click` with its index.
template <class Items, class Click>
void ConnectEach(Items& items, Click click) {
    for (std::size_t i = 0; i < items.size(); ++i) {
        items[i].OnClick = [click, i] { click(static_cast<int>(i)); };
    }
}

} // namespace

FrmBoard::FrmBoard(const FrmBoardParts& parts) : p_(parts) {
    BuildMenus();
    ConnectHandlers();
    p_.Board.Attach();
}

void FrmBoard::BuildMenus() {
    BoardWindow& board = p_.Board;
    for (MenuItem& item : p_.Zoom.vw) board.ZoomSubmenu.Add(item);
    board.OptionsMenu.Add(board.ZoomSubmenu);
    board.OptionsMenu.Add(p_.Settings.StrengthSubmenu);
    board.OptionsMenu.Add(p_.Settings.pnd);
    board.OptionsMenu.Add(board.PromotionSubmenu);
    for (MenuItem* menu : {&board.FileMenu, &board.Moves.MovesMenu, &board.OptionsMenu, &board.hlp, &board.hpg}) {
        board.Window.AddMenu(*menu);
    }
}

void FrmBoard::ConnectHandlers() {
    BoardWindow& board = p_.Board;
    Form& window = board.Window;
    window.OnQueryUnload = [this] { Form_QueryUnload(); };
    window.OnMouseDown = [this](const PointerEvent& e) { Form_MouseDown(e.Button, e.Shift, e.X, e.Y); };
    window.OnMouseMove = [this](const PointerEvent& e) { Form_MouseMove(e.Button, e.Shift, e.X, e.Y); };
    window.OnMouseUp = [this](const PointerEvent& e) { Form_MouseUp(e.Button, e.Shift, e.X, e.Y); };
    ConnectEach(board.SubFileMenu, [this](int index) { SubFileMenu_Click(index); });
    ConnectEach(board.Moves.SubMovesMenu, [this](int index) { SubMovesMenu_Click(index); });
    ConnectEach(board.Moves.poke, [this](int index) { poke_Click(index); });
    ConnectEach(board.pprom, [this](int index) { pprom_Click(index); });
    ConnectEach(p_.Settings.cs, [this](int index) { p_.Settings.cs_Click(static_cast<std::int16_t>(index)); });
    p_.Settings.pnd.OnClick = [this] { p_.Settings.pnd_Click(); };
    board.hlp.OnClick = [this] { hlp_Click(); };
    board.hpg.OnClick = [this] { hpg_Click(); };
    board.ctrl_SkinableButton1.Click = [this] { ctrl_SkinableButton1_Click(); };
}

void FrmBoard::Form_Load() {
    BoardWindow& board = p_.Board;
    board.Picture1.Visible = false;
    board.Status.crtkalica.Visible = false;
    board.Moves.poke.back().Visible = false;
    p_.Zoom.MeasureWindow();
    p_.Settings.EngineThreads = 1;
    p_.Settings.pnd.Visible = true;
    CountEngineThreads();
    board.Label1.Caption = WelcomeText();
    board.Status.Picture4[0].Visible = true;
    board.Status.Picture4[1].Visible = false;
    p_.Settings.MoveTime = 10;
    p_.Settings.EngineSkill = 100;
    p_.State.Zoom = 1.0F;
    p_.Settings.ApplyEngineOptions();
    p_.Controller.PromotePiece = Queen;
    p_.State.ShowLastMove = 1;
    p_.State.Variations.assign(FirstVariationRows, {});
    WaitSeconds(0.5F);
    p_.Panel.Form_Load();
    p_.Library.EngineLib = 0;
    p_.Control.SetIdleState();
    p_.Library.Probe();
    board.Window.Visible = true;
    p_.Bridge.Run([this](std::int32_t length) { p_.Computer.OutputCallback(length); });
}

void FrmBoard::CountEngineThreads() {
    const Text cores = p_.Screen.EnvironmentValue("NUMBER_OF_PROCESSORS").value_or(Text());
    Step(ToInteger16(cores), [&](std::int16_t count) {
        count = std::min(count, MostThreads);
        if (count >= 2) p_.Settings.EngineThreads = count;
    });
}

void FrmBoard::Form_QueryUnload() {
    p_.Screen.EndProcess();
}

void FrmBoard::WaitSeconds(float seconds) {
    const auto duration = static_cast<std::uint32_t>(RoundHalfEven(seconds * 1000));
    const std::uint32_t start = p_.Screen.TickCount();
    do {
        p_.Screen.ProcessEvents();
    } while (p_.Screen.TickCount() - start <= duration);
}

// Window pixels become frame pixels by the zoom and are rounded down on all sides of the window.
void FrmBoard::Form_MouseDown(PointerButton button, int shift, float x, float y) {
    x = std::floor(x / p_.State.Zoom);
    y = std::floor(y / p_.State.Zoom);
    if (button == PointerButton::Right) {
        if (p_.Renderer.BoardBorder(x, y)) return;
        if (p_.Controller.SelFile != 0) {
            p_.Controller.SelFile = 0;
            p_.Panel.CancelPieceSel();
            return;
        }
    }
    p_.Panel.ClickOnBoard(button, shift, x, y, BoardAction::Press);
}

void FrmBoard::Form_MouseMove(PointerButton, int, float x, float y) {
    p_.Controller.CurrentX = static_cast<std::int32_t>(std::floor(x / p_.State.Zoom));
    p_.Controller.CurrentY = static_cast<std::int32_t>(std::floor(y / p_.State.Zoom));
}

void FrmBoard::Form_MouseUp(PointerButton button, int shift, float x, float y) {
    x = std::floor(x / p_.State.Zoom);
    y = std::floor(y / p_.State.Zoom);
    if (p_.Controller.SelFile == 0) return;
    p_.Controller.DragLastX = 0;
    p_.Controller.DragLastY = 0;
    p_.Controller.FloatPiece = NoPiece;
    p_.Panel.ClickOnBoard(button, shift, x, y, BoardAction::Drop);
}

void FrmBoard::SubFileMenu_Click(int index) {
    switch (index) {
    case 0:
        p_.Panel.NewGameAsWhite();
        break;
    case 1:
        p_.Panel.NewGameAsBlack();
        break;
    case 3:
        p_.Files.SaveGame();
        break;
    case 4:
        p_.Files.LoadGame();
        break;
    default:
        break;
    }
}

void FrmBoard::SubMovesMenu_Click(int index) {
    for (MenuItem& item : p_.Board.Moves.SubMovesMenu) item.Checked = false;
    Step(ElementAt(p_.Board.Moves.SubMovesMenu, index), [](MenuItem& item) { item.Checked = true; });
    static constexpr std::array<std::int16_t, 7> CodeOfItem{Back, Forward, ToStart, ToEnd, 0, MoveNow, StopThinking};
    Step(ElementAt(CodeOfItem, index), [&](std::int16_t code) { p_.Panel.MoveTAB(code, False); });
}

void FrmBoard::poke_Click(int index) {
    Step(ElementAt(ItemOfButton, index), [&](int item) { SubMovesMenu_Click(item); });
}

void FrmBoard::pprom_Click(int index) {
    for (MenuItem& item : p_.Board.pprom) item.Checked = false;
    Step(ElementAt(p_.Board.pprom, index), [](MenuItem& item) { item.Checked = true; });
    p_.Controller.PromotePiece = static_cast<std::uint8_t>(index + Knight);
}

void FrmBoard::hlp_Click() {
    p_.Board.Picture1.Visible = true;
}

void FrmBoard::ctrl_SkinableButton1_Click() {
    p_.Board.Picture1.Visible = false;
}

void FrmBoard::hpg_Click() {
    p_.Screen.OpenAddress(Text(HomePage));
}

} // namespace quarnel
