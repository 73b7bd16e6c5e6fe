#include "app/FrmBoard.h"

#include "base/Numbers.h"
#include "base/Step.h"

#include <algorithm>

namespace quarnel {

namespace {

constexpr std::int16_t MostThreads = 8;

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

} // namespace

FrmBoard::FrmBoard(Desktop& desktop, BoardWindow& board, EngineLibrary& library, EngineBridge& bridge,
                   EngineSettings& settings, EngineControl& control, ZoomMenu& zoom, CtrlPanel& panel)
    : desktop_(desktop), board_(board), library_(library), bridge_(bridge), settings_(settings), control_(control),
      zoom_(zoom), panel_(panel) {
    board_.Window.OnQueryUnload = [this] { Form_QueryUnload(); };
    board_.Attach();
}

void FrmBoard::Form_Load() {
    board_.Picture1.Visible = false;
    board_.Status.crtkalica.Visible = false;
    board_.Moves.poke.back().Visible = false;
    zoom_.MeasureWindow();
    settings_.EngineThreads = 1;
    settings_.pnd.Visible = true;
    CountEngineThreads();
    board_.Label1.Caption = WelcomeText();
    board_.Status.Picture4[0].Visible = true;
    board_.Status.Picture4[1].Visible = false;
    settings_.MoveTime = 10;
    settings_.EngineSkill = 100;
    settings_.ApplyEngineOptions();
    panel_.SetStartValues();
    WaitSeconds(0.5F);
    panel_.Form_Load();
    library_.EngineLib = 0;
    control_.SetIdleState();
    library_.Probe();
    board_.Window.Visible = true;
    bridge_.Run();
}

void FrmBoard::CountEngineThreads() {
    const Text cores = desktop_.EnvironmentValue("NUMBER_OF_PROCESSORS").value_or(Text());
    Step(ToInteger16(cores), [&](std::int16_t count) {
        count = std::min(count, MostThreads);
        if (count >= 2) settings_.EngineThreads = count;
    });
}

void FrmBoard::Form_QueryUnload() {
    desktop_.EndProcess();
}

void FrmBoard::WaitSeconds(float seconds) {
    const auto duration = static_cast<std::uint32_t>(RoundHalfEven(seconds * 1000));
    const std::uint32_t start = desktop_.TickCount();
    desktop_.ProcessEvents();
    for (std::uint32_t passed = desktop_.TickCount() - start; passed <= duration;
         passed = desktop_.TickCount() - start) {
        desktop_.WaitEventFor(duration + 1 - passed);
        desktop_.ProcessEvents();
    }
}

} // namespace quarnel
