// Prints how punctual the session is: overshoot of the time a move may take, time from "force" to the
// move line, and how long the program's thread is kept between two callbacks, by a search and by what changes it.
//
//   bench-latency [moves] [tenths of a second a move]        30 moves of 0.5 s by default, about 25 s
#include "quarnelchess/library/Session.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace quarnel::engine;

namespace {

using Moment = std::chrono::steady_clock::time_point;

double MsSince(Moment moment) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - moment).count();
}

void Print(const char* what, std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const auto at = [&](double share) {
        return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
    };
    std::printf("%-34s %6zu samples   median %7.2f ms   99 %% %7.2f ms   worst %7.2f ms\n", what, values.size(),
                at(0.5), at(0.99), values.back());
}

} // namespace

int main(int argc, char** argv) {
    const int moves = argc > 1 ? std::atoi(argv[1]) : 30;
    const int tenths = argc > 2 ? std::atoi(argv[2]) : 5;
    std::vector<double> overshoot, force, held, settings;
    Moment started;
    Moment left = std::chrono::steady_clock::now();
    Session* running = nullptr;
    bool wasThinking = false;
    // What the engine does between two callbacks, its own pause left out, holds the program's thread.
    class PausingClock final : public Clock {
      public:
        std::int64_t NowMs() override { return inner_.NowMs(); }
        void SleepMs(int durationMs) override {
            const Moment before = std::chrono::steady_clock::now();
            inner_.SleepMs(durationMs);
            Slept += MsSince(before);
        }
        double Slept = 0;

      private:
        SteadyClock inner_;
    } pausing;
    Session session(
        pausing,
        [&](bool) {
            const bool thinking = running != nullptr && running->IsThinking();
            if (thinking && wasThinking) held.push_back(MsSince(left) - pausing.Slept);
            wasThinking = thinking;
            pausing.Slept = 0;
            left = std::chrono::steady_clock::now();
        },
        [](int) {});
    running = &session;

    session.Receive("mt = 1");
    session.Receive("adaptive 10M 4M 64M 1M 16M");
    session.Receive("skill 100 " + std::to_string(tenths));
    session.Step();
    // No opening position: the book would answer without a search.
    const std::string middlegame = "setboard r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";
    const auto go = [&] {
        session.Receive("go");
        pausing.Slept = 0;
        started = std::chrono::steady_clock::now();
        session.Step();
        held.push_back(MsSince(started) - pausing.Slept);
    };
    for (int i = 0; i < moves; ++i) {
        if (i % 20 == 0) session.Receive(middlegame);
        go();
        while (session.IsThinking()) session.Step();
        overshoot.push_back(MsSince(started) - tenths * 100);
    }
    for (int i = 0; i < moves; ++i) {
        session.Receive(middlegame);
        go();
        for (int step = 0; step < 20; ++step) session.Step();
        started = std::chrono::steady_clock::now();
        session.Receive("force");
        session.Step();
        force.push_back(MsSince(started));
    }
    // With eight threads and the largest table, whether a search runs or not.
    session.Receive("mt = 8");
    for (int i = 0; i < moves; ++i) {
        for (const std::string& line : {"adaptive 10M 4M " + std::string(i % 2 == 0 ? "1024M" : "512M") + " 1M 16M",
                                        std::string("new"), middlegame, std::string("go"), std::string("new")}) {
            session.Receive(line);
            started = std::chrono::steady_clock::now();
            session.Step();
            settings.push_back(MsSince(started));
        }
        for (int step = 0; step < 100; ++step) session.Step();
    }
    Print("beyond the time for a move", overshoot);
    Print("from \"force\" to the move line", force);
    Print("program's thread held", held);
    Print("the same by settings and new games", settings);
    return 0;
}
