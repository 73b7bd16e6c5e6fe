#include "Options.h"

#include "quarnelchess/board/Text.h"

#include <algorithm>
#include <iostream>

namespace quarnel::match {
namespace {

using Words = std::vector<std::string>;
using Error = CLI::ValidationError;

constexpr const char* PlayerHelp = R"(A player is
  cmd=COMMAND       an engine for the universal chess interface, run by the shell,
                    or builtin:random, builtin:grabber, builtin:careful
  name=NAME         one word; first and second if left out
  nodes=N | movetime=MS | depth=N    the limit for each move, or
  clock=BASE+INCREMENT               seconds for the game, and those that each move
                    gives back: 5+0.05; who uses up his time has lost
  option.NAME=VALUE sets an option of the engine; as many as are wanted)";

void ReadClock(const std::string& value, Limit& limit) {
    const std::optional<ClockRules> rules = ReadClockRules(value);
    if (!rules) throw Error("clock is seconds for the game and for each move, such as 5+0.05, not \"" + value + "\".");
    limit = {Limit::Kind::Clock, 0, *rules};
}

/// One "key=value" of a player.
void ReadPlayerWord(const std::string& word, PlayerSetup& player) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) throw Error("\"" + word + "\" should read key=value.");
    const std::string key = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    const auto limit = [&](Limit::Kind kind) {
        const std::optional<int> number = engine::ReadNumber(value, 1, 1000000000);
        if (!number) throw Error(key + " is a number from 1 to 1000000000, not \"" + value + "\".");
        player.Thinking = {kind, *number};
    };
    if (key == "name")
        player.Name = value;
    else if (key == "cmd")
        player.Command = value;
    else if (key == "nodes")
        limit(Limit::Kind::Nodes);
    else if (key == "movetime")
        limit(Limit::Kind::MoveTimeMs);
    else if (key == "depth")
        limit(Limit::Kind::Depth);
    else if (key == "clock")
        ReadClock(value, player.Thinking);
    else if (key.starts_with("option.") && key.size() > 7)
        player.Options.emplace_back(key.substr(7), value);
    else
        throw Error("A player has no \"" + key + "\"; keys are name, cmd, nodes, movetime, depth, clock, option.NAME.");
}

bool IsOneWord(const std::string& name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), [](char c) { return c <= ' ' || c == '"'; });
}

void ReadPlayers(const Words& both, const std::vector<Words>& players, MatchSetup& setup) {
    if (players.size() != 2) throw Error("A match needs two --player.");
    for (std::size_t i = 0; i < 2; ++i) {
        PlayerSetup& player = setup.Players[i];
        player.Name = i == 0 ? "first" : "second";
        for (const Words& words : {both, players[i]})
            for (const std::string& word : words) ReadPlayerWord(word, player);
        if (player.Command.empty()) throw Error("Player \"" + player.Name + "\" has no cmd=.");
        if (!IsOneWord(player.Name)) throw Error("A player's name is one word, not \"" + player.Name + "\".");
        if (!player.IsBuiltin() && player.Thinking.What == Limit::Kind::None)
            throw Error("Player \"" + player.Name + "\" needs a limit: nodes=, movetime=, depth= or clock=.");
    }
    if (setup.Players[0].Name == setup.Players[1].Name)
        throw Error("Both players are called \"" + setup.Players[0].Name + "\".");
}

void AddPair(CLI::App& app, const std::string& name, int& cp, int& moves, const std::string& help) {
    const auto read = [name, &cp, &moves](const std::pair<int, int>& pair) {
        if (pair.second < 1) throw Error(name, "needs at least one move.");
        std::tie(cp, moves) = pair;
    };
    app.add_option_function<std::pair<int, int>>(name, read, help)
        ->delimiter(',')
        ->check(CLI::Range(0, 30000))
        ->type_name("CP,MOVES")
        ->default_str(std::to_string(cp) + "," + std::to_string(moves));
}

} // namespace

void AddCommonOptions(CLI::App& app, int& games, int& concurrency, std::uint64_t& seed) {
    const auto even = [](const std::string& text) {
        return (text.back() - '0') % 2 == 0 ? std::string() : "games come in pairs, so their number is even";
    };
    app.option_defaults()->always_capture_default();
    app.add_option("--games", games, "At most so many, even")->check(CLI::Range(2, 1000000))->check(even);
    app.add_option("--concurrency", concurrency, "Games at a time")->check(CLI::Range(1, 256));
    app.add_option("--seed", seed, "Of the openings and of whatever players draw")->check(CLI::Range(0, 1000000000));
}

void AddMatchOptions(CLI::App& app, MatchSetup& setup) {
    AddCommonOptions(app, setup.Games, setup.Concurrency, setup.Opening.Seed);
    struct Players {
        Words Both;
        std::vector<Words> Each;
        int TimeoutMs = PlayerSetup().TimeoutMs;
    };
    const auto players = std::make_shared<Players>();
    app.footer(PlayerHelp);
    app.add_option("--player", players->Each, "A player; there are two")->type_name("KEY=VALUE")->default_str("");
    app.add_option("--both", players->Both, "Said of both players, unless one has a word of his own")
        ->type_name("KEY=VALUE")
        ->default_str("");
    app.add_option("--opening-plies", setup.Opening.Plies, "Random moves before the game, 0 for none")
        ->check(CLI::Range(0, 40));
    app.add_option("--opening-balance", setup.Opening.BalanceCp, "How uneven an opening may be")
        ->check(CLI::Range(20, 30000));
    const auto test = [&setup](const std::pair<double, double>& elo) {
        if (elo.first >= elo.second) throw Error("--sprt", "the first difference must be the smaller one.");
        setup.Test = SequentialTest{elo.first, elo.second};
    };
    app.add_option_function<std::pair<double, double>>("--sprt", test, "Stop as soon as one of the two is clear")
        ->delimiter(',')
        ->type_name("ELO0,ELO1");
    AdjudicationRules& rules = setup.Adjudication;
    app.add_flag("!--no-adjudication", rules.Enabled, "Play on to the end");
    AddPair(app, "--win", rules.WinCp, rules.WinMoves, "Both see a side ahead by so much for so long");
    AddPair(app, "--draw", rules.DrawCp, rules.DrawMoves, "Both see the game so even for so long");
    app.add_option("--draw-from", rules.DrawFromMove, "But not before this move")->check(CLI::Range(0, 1000));
    app.add_option("--max-plies", rules.MaxPlies, "A longer game is drawn")->check(CLI::Range(1, 10000));
    app.add_option("--timeout", players->TimeoutMs, "Milliseconds for a move, beyond its clock; then the engine hangs")
        ->check(CLI::Range(1, 100000000));
    app.add_option("--clock-margin", setup.ClockMarginMs, "Milliseconds that a clock may be overdrawn by")
        ->check(CLI::Range(0, 10000));
    app.add_option("--journal", setup.JournalPath, "Finished games; the same command goes on from there");
    app.add_option("--pgn", setup.PgnPath, "Adds the games in full to this file");
    app.callback([&setup, players] {
        for (PlayerSetup& player : setup.Players) player.TimeoutMs = players->TimeoutMs;
        ReadPlayers(players->Both, players->Each, setup);
    });
}

int RunProgram(CLI::App& app, int argc, char** argv, const std::function<ExitCode()>& program) {
    try {
        app.parse(argc, argv);
        return program();
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? Done : Misused;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return Failed;
    }
}

} // namespace quarnel::match
