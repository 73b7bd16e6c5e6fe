#include "Monkey.h"

#include "Core.h"

#include <algorithm>
#include <random>

namespace quarnel::monkey {
namespace {

enum Kind : std::uint8_t {
    PressAnywhere,
    MovePointer,
    ReleaseAnywhere,
    PlayMove,
    ChooseItem,
    ChooseShortcut,
    LetEngineAsk, // for a line; the commonest
    LetEngineAnswer,
    LetEngineSay,
    LoseLines,
    RepeatLines,
    DoNextInMiddle, // of what comes then: a slide, a drag, a redraw
    AnswerDialogs,
    BreakStores,
    SpoilSetting,
    ChangeClock,
    Close,
    KindCount
};
const char* const KindNames[] = {"press", "move",   "release", "play",    "item",  "shortcut", "ask",   "answer", "say",
                                 "lose",  "repeat", "middle",  "dialogs", "break", "setting",  "clock", "close"};
static_assert(std::size(KindNames) == KindCount);

const char* const Lines[] = {"White(1): e4 ",
                             "Black(1): e5 ",
                             "White(0): - ",
                             "Black(1): ",
                             "White(",
                             "White(9): Nf3 ",
                             "Black(1): O-O-O ",
                             "White(1): 1-0 ",
                             "White mates",
                             "Black mates",
                             "stalemate",
                             "checkmate",
                             "Illegal now.",
                             "",
                             "White(1): zz ",
                             "White(-1): e4 ",
                             "White(99999): e4 ",
                             "Black(2): exd6=Q ",
                             "): ",
                             "White(1): e4"};
const char* const Records[] = {"",
                               "\tWhite(You)\tBlack\r\n1.\te4\te5\r\n2.\tNf3\t\r\n",
                               "\tWhite\tBlack(You)\r\n1.\td4\td5\r\n",
                               "\tWhite\tBlack(You)\r\n1.\t-\te5\r\n2.\tNf3\tNc6\r\n",
                               "\tWhite(You)\tBlack\textra\r\n",
                               "\tWhite(You)\tBlack\r\n1.\te4\te5\r\n3.\tNf3\t\r\n",
                               "\tWhite(You)\tBlack\r\n1.\tzz\tQh5\r\n2.\tO-O\t1-0\r\n",
                               "\tWhite(You)\r\n\r\n1.",
                               "\tWhite(You)\tBlack\r\n1.\tf3\te5\r\n2.\tg4\tQh4#\r\n"};
const char* const Settings[] = {"level", "ponder", "wsize"};
const char16_t* const Values[] = {u"0", u"9", u"-1", u"12", u"99999", u"x", u"", u"true"};

class Run {
  public:
    explicit Run(const Stream& stream) : stream_(stream) {
        core_.Hears = [this](const std::string&) {
            if (lose_ == 0) return true;
            --lose_;
            disturbed_ = true;
            return false;
        };
        core_.Unasked = [this] { return DoNextUserDeed(); };
    }

    std::string All() {
        try {
            return Deeds();
        } catch (const ScriptedDesktop::ProcessEnded&) {
            return {};
        } catch (const ScriptedDesktop::ScriptEnded&) {
            return "waits for ever";
        }
    }

  private:
    std::string Deeds() {
        while (next_ < stream_.size()) {
            const std::size_t number = next_;
            Do(stream_[next_++]);
            if (const std::string wrong = Rules(); !wrong.empty())
                return wrong + " after deed " + std::to_string(number + 1);
        }
        core_.Screen.BeforeProcess = nullptr;
        core_.Hears = nullptr;
        core_.Screen.StoresFail = false;
        core_.Settle();
        const std::string wrong = Rules();
        return !wrong.empty() ? wrong + " at rest" : core_.HasWayOut(disturbed_) ? "" : "no way out";
    }

    static bool IsUsers(const Deed& deed) { return deed.Kind <= ChooseShortcut; }

    // A deed in the place of what the user would do to let the program go on; false when there is none.
    bool DoNextUserDeed() {
        if (next_ >= stream_.size() || !IsUsers(stream_[next_])) return false;
        Do(stream_[next_++]);
        return true;
    }

    void Do(const Deed& deed) {
        ScriptedDesktop& screen = core_.Screen;
        FrmMsg& box = core_.Game->Messages.Dialog();
        Form& form = box.Visible.Get() && deed.A % 4 != 0 ? static_cast<Form&>(box) : core_.Game->Board.Window;
        const double x = deed.A % 1000 - 40.0;
        const double y = deed.B % 1000 - 40.0;
        const PointerButton button = deed.B % 9 == 0 ? PointerButton::Right : PointerButton::Left;
        switch (deed.Kind) {
        case PressAnywhere:
            screen.Press(form, x, y, button);
            break;
        case MovePointer:
            screen.Move(form, x, y, button);
            break;
        case ReleaseAnywhere:
            screen.Release(form, x, y, button);
            break;
        case PlayMove:
            core_.DragLegalMove(deed.A);
            break;
        case ChooseItem:
            screen.Click(*Items()[deed.A % Items().size()]);
            break;
        case ChooseShortcut:
            screen.Shortcut(core_.Game->Board.Window, std::u16string(u"Ctrl+") + u"BFSEMH"[deed.A % 6]);
            break;
        case LetEngineAsk:
            for (int i = deed.A % 4; i >= 0; --i) core_.Step();
            break;
        case LetEngineAnswer:
            core_.Engine.Answer();
            if (deed.A % 2 == 0) core_.Drain();
            break;
        case LetEngineSay:
            disturbed_ = true;
            core_.Tell(Lines[deed.A % std::size(Lines)]);
            break;
        case LoseLines:
            lose_ = deed.A % 2;
            break;
        case RepeatLines:
            disturbed_ = true;
            core_.Tell(core_.LastSaid());
            break;
        case DoNextInMiddle:
            screen.BeforeProcess = [this, passes = 1 + deed.A % 5]() mutable {
                if (--passes == 0) DoNextUserDeed();
            };
            break;
        case AnswerDialogs:
            screen.Files["game.txt"] = Records[deed.B % std::size(Records)];
            screen.DialogAnswers.assign(deed.A % 3, deed.A % 5 == 0 ? "missing/game.txt" : "game.txt");
            break;
        case BreakStores:
            screen.StoresFail = deed.A % 2 == 0;
            break;
        case SpoilSetting:
            screen.Settings[std::string("quarnel chess/settings/") + Settings[deed.A % std::size(Settings)]] =
                Values[deed.B % std::size(Values)];
            break;
        case ChangeClock: {
            constexpr std::uint32_t steps[] = {1, 10, 40, 2000};
            screen.TickStepMs = steps[deed.A % std::size(steps)];
            screen.FrameMs = deed.B % 2 == 0 ? 16 : 0;
            break;
        }
        case Close:
            // Rare, so that streams live long.
            if (deed.A % 40 == 0) screen.Close(core_.Game->Board.Window);
            break;
        default:
            break;
        }
    }

    /// Every item that can be chosen.
    const std::vector<MenuItem*>& Items() {
        if (items_.empty()) Collect(core_.Game->Board.Window.Menus());
        return items_;
    }
    void Collect(const std::vector<MenuItem*>& items) {
        for (MenuItem* item : items) {
            if (item->Items().empty()) items_.push_back(item);
            Collect(item->Items());
        }
    }

    /// What must hold whenever nothing is in progress.
    std::string Rules() {
        const GameState& state = core_.State();
        const ControllerState& controller = core_.Game->Controller;
        if (state.PlyNow < 0 || state.PlyNow > state.PlyCount) return "the counters are wrong";
        if (static_cast<int>(state.MoveText.size()) < (state.PlyCount + 1) / 2 + 1) return "the history is too short";
        const char controls = core_.Controls();
        if (core_.Thinking() ? controls != 't' && controls != 's' : controls != 'i') return "the controls are wrong";
        if (state.MoveBusy != False) return "a move is still being made";
        if (controller.FloatPiece != 0) return "a piece is still held";
        for (int row = 0; row <= 8; ++row)
            for (int file = 0; file <= 8; ++file) {
                const int code = state.CurPos.Board[row][file];
                if (code > 12 || ((row == 0 || file == 0) && code != 0)) return "a square holds no piece";
            }
        if (!(state.Zoom >= 0.75F && state.Zoom <= 2.5F)) return "the zoom is none of the menu's";
        return {};
    }

    Core core_;
    const Stream& stream_;
    std::size_t next_ = 0;
    int lose_ = 0;
    bool disturbed_ = false; // a search may have had no answer that counts; a new game as Black asks for another
    std::vector<MenuItem*> items_;
};

} // namespace

Stream RandomStream(std::uint32_t seed, std::size_t length) {
    // How often each kind is done, of a hundred or so; in the order of Kind.
    constexpr int shares[] = {6, 4, 6, 16, 12, 5, 22, 12, 3, 2, 2, 8, 6, 1, 2, 2, 1};
    static_assert(std::size(shares) == KindCount);
    std::mt19937 random(seed);
    std::discrete_distribution<int> kinds(std::begin(shares), std::end(shares));
    Stream stream(length);
    for (Deed& deed : stream) {
        deed = {static_cast<std::uint8_t>(kinds(random)), static_cast<std::uint16_t>(random() & 0xFFFF),
                static_cast<std::uint16_t>(random() & 0xFFFF)};
    }
    return stream;
}

std::string Play(const Stream& stream) {
    return Run(stream).All();
}

Stream Shrunk(Stream stream) {
    for (std::size_t size = stream.size() / 2; size > 0; size /= 2) {
        for (std::size_t start = 0; start + size <= stream.size();) {
            Stream shorter = stream;
            const auto first = shorter.begin() + static_cast<std::ptrdiff_t>(start);
            shorter.erase(first, first + static_cast<std::ptrdiff_t>(size));
            if (Play(shorter).empty())
                start += size;
            else
                stream = std::move(shorter);
        }
    }
    return stream;
}

std::string Describe(const Stream& stream) {
    std::string text;
    for (const Deed& deed : stream)
        text += std::string(KindNames[deed.Kind]) + " " + std::to_string(deed.A) + " " + std::to_string(deed.B) + "\n";
    return text;
}

} // namespace quarnel::monkey
