#include "Options.h"

#include "quarnelchess/board/Text.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <iostream>

namespace quarnel::match {
namespace {

std::atomic<bool> stopRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void RequestStop(int signal) {
    stopRequested.store(true, std::memory_order_relaxed);
    std::signal(signal, SIG_DFL);
}

/// One "key=value" of a player.
void ReadPlayerWord(const std::string& word, PlayerSetup& player) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos)
        throw UsageError("\"" + word +
                         "\" should read key=value; keys are name, cmd, nodes, movetime, depth, "
                         "option.NAME.");
    const std::string key = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    const auto limit = [&](Limit::Kind kind) { player.PerMove = {kind, ReadInteger(key, value, 1, 1000000000)}; };
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
    else if (key.starts_with("option.") && key.size() > 7)
        player.Options.emplace_back(key.substr(7), value);
    else
        throw UsageError("A player has no \"" + key + "\"; keys are name, cmd, nodes, movetime, depth, option.NAME.");
}

SequentialTest ReadTest(const std::string& text) {
    const std::size_t comma = text.find(',');
    SequentialTest test;
    const auto read = [&](const std::string& part, double& value) {
        const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
        if (error != std::errc{} || end != part.data() + part.size())
            throw UsageError("--sprt needs two Elo differences, as in --sprt 0,5.");
    };
    read(text.substr(0, comma), test.Elo0);
    read(comma == std::string::npos ? "" : text.substr(comma + 1), test.Elo1);
    if (test.Elo0 >= test.Elo1) throw UsageError("--sprt: the first difference must be the smaller one.");
    return test;
}

void ReadPair(const std::string& option, const std::string& text, int& cp, int& moves) {
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos)
        throw UsageError(option + " needs centipawns and moves, as in " + option + " 700,4.");
    cp = ReadInteger(option, text.substr(0, comma), 0, 30000);
    moves = ReadInteger(option, text.substr(comma + 1), 1, 1000);
}

bool IsOneWord(const std::string& name) {
    return !name.empty() && std::none_of(name.begin(), name.end(), [](char c) { return c <= ' ' || c == '"'; });
}

void CheckPlayers(const MatchSetup& setup) {
    for (const PlayerSetup& player : setup.Players) {
        if (player.Command.empty()) throw UsageError("Player \"" + player.Name + "\" has no cmd=.");
        if (!IsOneWord(player.Name)) throw UsageError("A player's name is one word, not \"" + player.Name + "\".");
        if (!player.IsBuiltin() && player.PerMove.What == Limit::Kind::None)
            throw UsageError("Player \"" + player.Name + "\" needs a limit: nodes=, movetime= or depth=.");
    }
    if (setup.Players[0].Name == setup.Players[1].Name)
        throw UsageError("Both players are called \"" + setup.Players[0].Name + "\".");
}

} // namespace

const char* const MatchUsage =
    R"(quarnel-match --player KEY=VALUE... --player KEY=VALUE... [OPTION...]

Plays games in pairs, colours changed, between two players. A player is
  cmd=COMMAND       an engine for the universal chess interface, run by the shell,
                    or builtin:random, builtin:grabber
  name=NAME         one word; first and second if left out
  nodes=N | movetime=MS | depth=N    the limit for each move
  option.NAME=VALUE sets an option of the engine; as many as are wanted

  --both KEY=VALUE...     said of both players
  --games N               at most so many, even (200)
  --concurrency N         games at a time (2)
  --seed N                of the openings and of whatever players draw (1)
  --opening-plies N       random moves before the game, 0 for none (8)
  --opening-balance CP    how uneven an opening may be (80)
  --sprt ELO0,ELO1        stop as soon as one of the two is clear
  --no-adjudication       play on to the end
  --win CP,MOVES          both see a side ahead by so much for so long (700,4)
  --draw CP,MOVES         both see the game so even for so long (10,8)
  --draw-from MOVE        but not before this move (40)
  --max-plies N           a longer game is drawn (400)
  --timeout MS            for a move; then the engine hangs (60000)
  --journal FILE          finished games; the same command goes on from there
  --pgn FILE              adds the games in full to this file
)";

std::string Words::Value(const std::string& option) {
    if (AtEnd() || AtOption()) throw UsageError(option + " needs a value.");
    return Next();
}

int Words::Number(const std::string& option, int lowest, int highest) {
    return ReadInteger(option, Value(option), lowest, highest);
}

int ReadInteger(const std::string& option, const std::string& text, int lowest, int highest) {
    const std::optional<int> value = engine::ReadNumber(text, lowest, highest);
    if (!value)
        throw UsageError(option + " is a number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
                         ", not \"" + text + "\".");
    return *value;
}

MatchSetup ReadMatchArguments(const std::vector<std::string>& arguments) {
    MatchSetup setup;
    setup.Players[0].Name = "first";
    setup.Players[1].Name = "second";
    int players = 0;
    Words words(arguments);
    while (!words.AtEnd()) {
        const std::string option = words.Next();
        if (option == "--player") {
            if (players == 2) throw UsageError("A match has two players, not three.");
            PlayerSetup& player = setup.Players[players++];
            while (!words.AtEnd() && !words.AtOption()) ReadPlayerWord(words.Next(), player);
        } else if (option == "--both") {
            while (!words.AtEnd() && !words.AtOption()) {
                const std::string word = words.Next();
                for (PlayerSetup& player : setup.Players) ReadPlayerWord(word, player);
            }
        } else if (option == "--games") {
            setup.Games = words.Number(option, 2, 1000000);
            if (setup.Games % 2 != 0) throw UsageError("--games is an even number: games come in pairs.");
        } else if (option == "--concurrency") {
            setup.Concurrency = words.Number(option, 1, 256);
        } else if (option == "--seed") {
            setup.Opening.Seed = static_cast<std::uint64_t>(words.Number(option, 0, 1000000000));
        } else if (option == "--opening-plies") {
            setup.Opening.Plies = words.Number(option, 0, 40);
        } else if (option == "--opening-balance") {
            setup.Opening.BalanceCp = words.Number(option, 20, 30000);
        } else if (option == "--sprt") {
            setup.Test = ReadTest(words.Value(option));
        } else if (option == "--no-adjudication") {
            setup.Adjudication.Enabled = false;
        } else if (option == "--win") {
            ReadPair(option, words.Value(option), setup.Adjudication.WinCp, setup.Adjudication.WinMoves);
        } else if (option == "--draw") {
            ReadPair(option, words.Value(option), setup.Adjudication.DrawCp, setup.Adjudication.DrawMoves);
        } else if (option == "--draw-from") {
            setup.Adjudication.DrawFromMove = words.Number(option, 0, 1000);
        } else if (option == "--max-plies") {
            setup.Adjudication.MaxPlies = words.Number(option, 1, 10000);
        } else if (option == "--timeout") {
            const int timeoutMs = words.Number(option, 1, 100000000);
            for (PlayerSetup& player : setup.Players) player.TimeoutMs = timeoutMs;
        } else if (option == "--journal") {
            setup.JournalPath = words.Value(option);
        } else if (option == "--pgn") {
            setup.PgnPath = words.Value(option);
        } else {
            throw UsageError("There is no option \"" + option + "\".");
        }
    }
    if (players != 2) throw UsageError("A match needs two --player.");
    CheckPlayers(setup);
    return setup;
}

const std::atomic<bool>& WatchSignals() {
    std::signal(SIGINT, RequestStop);
    std::signal(SIGTERM, RequestStop);
    return stopRequested;
}

int RunProgram(int argc, char** argv, const char* usage, ExitCode (*program)(const std::vector<std::string>&)) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (std::find(arguments.begin(), arguments.end(), "--help") != arguments.end()) {
        std::cout << usage;
        return Done;
    }
    try {
        return program(arguments);
    } catch (const UsageError& error) {
        std::cerr << error.what() << " --help lists the options.\n";
        return Misused;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return Failed;
    }
}

} // namespace quarnel::match
