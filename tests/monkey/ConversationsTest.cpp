// Every short conversation between user, program and engine: whatever is said in whatever order, nobody waits for ever.
#include "Core.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace quarnel::monkey {
namespace {

/// What happens next: a deed of the user, and how many of the lines waiting go over before the one after it.
struct Move {
    const char* Name;
    void (*Do)(Core& core);
};

void ChooseInSlide(Core& core, MenuItem& item) {
    // The second pass of events in the slide of the answer; nothing slides, nothing happens.
    if (!core.Engine.Thinking) return;
    core.Drain();
    int passes = 0;
    core.Screen.BeforeProcess = [&] {
        if (++passes == 2) core.Screen.Click(item);
    };
    core.Engine.Answer();
    core.Screen.BeforeProcess = nullptr;
}

MenuItem& File(Core& core, int index) {
    return core.Game->Board.SubFileMenu[static_cast<std::size_t>(index)];
}

const Move Deeds[] = {
    {"play", [](Core& c) { c.DragLegalMove(5); }},
    {"stop", [](Core& c) { c.Choose(c.Moves(StopItem)); }},
    {"white", [](Core& c) { c.Choose(File(c, 0)); }},
    {"black", [](Core& c) { c.Choose(File(c, 1)); }},
    {"back", [](Core& c) { c.Choose(c.Moves(BackOneItem)); }},
    {"now", [](Core& c) { c.Choose(c.Moves(MoveNowItem)); }},
    {"load", [](Core& c) { c.Choose(File(c, 4)); }},
    {"answer", [](Core& c) { c.Engine.Answer(); }},
};
const Move InSlides[] = {
    {"slide:stop", [](Core& c) { ChooseInSlide(c, c.Moves(StopItem)); }},
    {"slide:white", [](Core& c) { ChooseInSlide(c, File(c, 0)); }},
    {"slide:black", [](Core& c) { ChooseInSlide(c, File(c, 1)); }},
    {"slide:load", [](Core& c) { ChooseInSlide(c, File(c, 4)); }},
};

/// Lines that go over before the next deed; the last stands for all.
constexpr int Pulls[] = {0, 1, 99};

struct Script {
    std::string Text;
    bool Slides = false;
};

Script Play(Core& core, long number, int length) {
    Script script;
    // A load that is asked for takes the next record.
    core.Screen.Files["game.txt"] = "\tWhite(You)\tBlack\r\n1.\te4\te5\r\n2.\tNf3\t\r\n";
    core.Screen.DialogAnswers.assign(8, "game.txt");
    const long deeds = std::size(Deeds) + std::size(InSlides);
    for (int i = 0; i < length; ++i) {
        const auto deed = static_cast<std::size_t>(number % deeds);
        number /= deeds;
        const int pulls = Pulls[number % 3];
        number /= 3;
        const bool slides = deed >= std::size(Deeds);
        const Move& move = slides ? InSlides[deed - std::size(Deeds)] : Deeds[deed];
        script.Text += std::string(i > 0 ? ", " : "") + move.Name + " " + std::to_string(pulls);
        script.Slides |= slides && core.Engine.Thinking;
        move.Do(core);
        for (int pull = 0; pull < pulls; ++pull) {
            core.Step();
            if (core.Game->Commands.CommandCount == 0) break;
        }
    }
    core.Settle();
    return script;
}

// Length 3 by itself; QUARNEL_SCRIPT_LENGTH=4 takes minutes.
TEST(Conversations, NeverEndInALostAnswerAForeignMoveOrAProgramThatThinksForEver) {
    const char* const wanted = std::getenv("QUARNEL_SCRIPT_LENGTH");
    const int length = wanted != nullptr ? std::atoi(wanted) : 2;
    long scripts = 1;
    for (int i = 0; i < length; ++i) scripts *= 3 * static_cast<long>(std::size(Deeds) + std::size(InSlides));
    int wrong = 0;
    for (long number = 0; number < scripts && wrong < 20; ++number) {
        Core core;
        core.Settle();
        core.DragLegalMove(5);
        const Script script = Play(core, number, length);
        const std::string what = script.Slides ? "" : core.WhatIsWrong();
        const bool wayOut = core.HasWayOut(number % 2 == 0);
        if (what.empty() && wayOut) continue;
        ++wrong;
        ADD_FAILURE() << script.Text << ": " << (what.empty() ? "no way out" : what);
    }
    RecordProperty("scripts", static_cast<int>(scripts));
}

} // namespace
} // namespace quarnel::monkey
