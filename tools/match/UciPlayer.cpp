#include "UciPlayer.h"

#include "quarnelchess/board/Text.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace quarnel::match {
namespace {

using engine::NextWord;
using engine::ReadNumber;

constexpr int MateCp = 30000;
constexpr std::chrono::milliseconds SetUpTimeout{20000};

Process::TimePoint In(std::chrono::milliseconds duration) {
    return AwakeNow() + duration;
}

/// Names of options are the same in capitals and small letters.
bool SameName(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

/// "option name Clear Hash type button" gives "Clear Hash".
std::string OptionName(std::string_view line) {
    constexpr std::string_view opening = "option name ";
    if (!line.starts_with(opening)) return {};
    line.remove_prefix(opening.size());
    return std::string(line.substr(0, line.find(" type ")));
}

} // namespace

std::string GoCommand(const Limit& limit, const ClockTimes& times) {
    const std::string value = std::to_string(limit.Value);
    if (limit.What == Limit::Kind::Nodes) return "go nodes " + value;
    if (limit.What == Limit::Kind::MoveTimeMs) return "go movetime " + value;
    if (limit.What == Limit::Kind::Depth) return "go depth " + value;
    std::string command = "go";
    for (const Color color : {engine::White, engine::Black})
        if (const auto& left = times.LeftMs[color])
            command.append(color == engine::White ? " wtime " : " btime ").append(std::to_string(*left));
    for (const Color color : {engine::White, engine::Black})
        if (times.LeftMs[color])
            command.append(color == engine::White ? " winc " : " binc ")
                .append(std::to_string(times.IncrementMs[color]));
    return command;
}

std::optional<int> ReadScore(std::string_view line) {
    if (NextWord(line) != "info") return std::nullopt;
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    std::optional<int> score;
    for (std::string_view word = NextWord(line); !word.empty(); word = NextWord(line)) {
        if (word == "string") break;
        if (word == "multipv" && NextWord(line) != "1") return std::nullopt;
        if (word != "score") continue;
        const std::string_view kind = NextWord(line);
        const std::optional<int> value = ReadNumber(NextWord(line), lowest, highest);
        if (value && kind == "cp") score = *value;
        if (value && kind == "mate") score = *value > 0 ? MateCp : -MateCp;
    }
    return score;
}

void UciPlayer::NewGame(std::uint64_t seed) {
    if (!process_) Start();
    if (takesSeed_) Send("setoption name Seed value " + std::to_string(1 + seed % 1000000000) + "\n");
    Send("ucinewgame\n");
    AwaitReady();
}

Answer UciPlayer::Choose(const Game& game, const ClockTimes& times) {
    std::string request = "position startpos";
    if (game.Plies() > 0) request += " moves" + game.MovesText();
    Send(request + "\n" + GoCommand(setup_.Thinking, times) + "\n");
    Answer answer;
    // Whoever answers after his time has lost by it; only who does not answer at all is hanging.
    const std::int64_t patienceMs = times.LeftMs[game.SideToMove()].value_or(0) + setup_.TimeoutMs;
    const Process::TimePoint deadline = In(std::chrono::milliseconds(patienceMs));
    for (;;) {
        const std::string line = Read(deadline);
        if (const std::optional<int> score = ReadScore(line)) answer.ScoreCp = score;
        std::string_view rest = line;
        if (NextWord(rest) != "bestmove") continue;
        answer.Text = NextWord(rest);
        return answer;
    }
}

void UciPlayer::Start() {
    process_ = std::make_unique<Process>(setup_.Command, stop_);
    try {
        std::vector<std::string> known;
        Send("uci\n");
        const Process::TimePoint deadline = In(SetUpTimeout);
        for (std::string line = Read(deadline); line != "uciok"; line = Read(deadline))
            if (const std::string name = OptionName(line); !name.empty()) known.push_back(name);
        SendOptions(known);
        AwaitReady();
    } catch (const Fault& fault) {
        process_.reset();
        throw std::runtime_error("Player \"" + setup_.Name + "\" cannot be set up: " + fault.what());
    }
}

void UciPlayer::SendOptions(const std::vector<std::string>& known) {
    const auto has = [](const auto& names, std::string_view name) {
        return std::any_of(names.begin(), names.end(), [name](const auto& other) { return SameName(name, other); });
    };
    std::vector<std::string> set;
    for (const auto& [name, value] : setup_.Options) {
        if (!has(known, name))
            throw std::runtime_error("Player \"" + setup_.Name + "\" has no option \"" + name + "\".");
        set.push_back(name);
        std::string command = "setoption name ";
        Send(command.append(name).append(" value ").append(value).append("\n"));
    }
    takesSeed_ = has(known, "Seed") && !has(set, "Seed");
}

void UciPlayer::AwaitReady() {
    Send("isready\n");
    const Process::TimePoint deadline = In(SetUpTimeout);
    while (Read(deadline) != "readyok") {
    }
}

void UciPlayer::Send(const std::string& text) {
    if (!process_->Write(text)) throw Fault(Ending::Crash, "the process " + process_->Kill());
}

std::string UciPlayer::Read(Process::TimePoint deadline) {
    std::string line;
    switch (process_->ReadLine(line, deadline)) {
    case Process::ReadStatus::Line:
        return line;
    case Process::ReadStatus::Ended:
        throw Fault(Ending::Crash, "the process " + process_->Kill());
    default:
        throw Fault(Ending::NoAnswer, "no answer came in time");
    }
}

} // namespace quarnel::match
