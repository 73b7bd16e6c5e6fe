// The command line of quarnel-record.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quarnel::record {

enum class Command { Pgn, Record, Fen, List };

struct Options {
    Command What = Command::List;
    std::vector<std::string> Inputs; ///< "-" is standard input; never empty
    std::string Output = "-";        ///< "-" is standard output
    std::string Folder;              ///< in place of `Output`, where it is not empty
    bool Force = false;
    bool ShowMoves = false;
    bool UserIsWhite = true; ///< where a game's tags do not say it
    int CodePage = 1252;
    std::optional<std::size_t> GameNumber; ///< this one of each input only, from 1
    std::optional<std::size_t> Ply;        ///< nothing: the last one
};

/// A command line that says nothing that can be done. The text is for the user.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What `--help` shows.
extern const char* const HelpText;

/// Nothing when the user asks for `help` or `version`, of which one is then set. `codePage` is the desktop's. Throws a
/// UsageError.
struct Request {
    bool Help = false;
    bool Version = false;
    Options Wanted;
};
Request ReadCommandLine(int argc, char** argv, int codePage);

} // namespace quarnel::record
