#include "Options.h"

#include <algorithm>
#include <charconv>
#include <map>

#include <getopt.h>

namespace quarnel::record {

const char* const HelpText =
    R"(Usage: quarnel-record COMMAND [OPTION...] [FILE...]

Takes the games that Quarnel Chess saves to other programs, and theirs to it.

Commands:
  pgn       write the games as PGN, the format that chess programs exchange
  record    write them as game records, which "Load Game" opens
  fen       write the position after a ply as FEN
  list      write a line for each game: file, number, White, Black, result,
            plies; with tabs between them

Each FILE is a game record or PGN, with any number of games; "-" or none is
standard input. Comments, variations and annotation marks are left out.

Options:
  -o, --output=FILE     write to FILE instead of standard output
  -d, --into=FOLDER     write a file in FOLDER for each FILE, or for each game
                        where a file holds one only (pgn, record)
  -f, --force           replace files that are there already
  -g, --game=N          take the N-th game of each FILE only
  -p, --ply=N           the ply, counted from 0, the start position; the last
                        one if left out (fen). A game that begins with Black's
                        move has ply 1 as its start.
  -m, --moves           list the moves, too: ply, move, its squares (list)
  -u, --user=SIDE       the side, white or black, that you play in a record
                        where neither player is called "You" (record)
  -c, --code-page=N     of records: 874 or 1250 to 1258; your desktop's if left
                        out
  -h, --help            show this
  -V, --version         show the version

Exit status: 0 when everything was done, 1 when something could not be, which is
told as "FILE:LINE: reason" while the rest goes on, 2 for a wrong command line.
)";

namespace {

std::size_t ReadNumber(const std::string& option, const std::string& value, std::size_t least, std::size_t most) {
    std::size_t number = 0;
    const char* end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || number < least || number > most)
        throw UsageError(option + " is a number from " + std::to_string(least) + " to " + std::to_string(most) +
                         ", not \"" + value + "\"");
    return number;
}

int ReadCodePage(const std::string& value) {
    if (value == "874") return 874;
    return static_cast<int>(ReadNumber("--code-page", value, 1250, 1258));
}

bool ReadUser(const std::string& value) {
    if (value != "white" && value != "black") throw UsageError("--user is white or black, not \"" + value + "\"");
    return value == "white";
}

Command ReadCommand(const std::string& word) {
    static const std::map<std::string, Command> commands{
        {"pgn", Command::Pgn}, {"record", Command::Record}, {"fen", Command::Fen}, {"list", Command::List}};
    const auto found = commands.find(word);
    if (found == commands.end()) throw UsageError("there is no command \"" + word + "\"");
    return found->second;
}

void CheckTogether(const Options& options) {
    const bool writesGames = options.What == Command::Pgn || options.What == Command::Record;
    if (!options.Folder.empty() && !writesGames) throw UsageError("--into goes with pgn and record only");
    if (!options.Folder.empty() && options.Output != "-") throw UsageError("--into and --output exclude each other");
    if (options.Ply && options.What != Command::Fen) throw UsageError("--ply goes with fen only");
    if (options.ShowMoves && options.What != Command::List) throw UsageError("--moves goes with list only");
}

} // namespace

Request ReadCommandLine(int argc, char** argv, int codePage) {
    constexpr std::size_t Any = 1000000000;
    static const option known[] = {{"output", required_argument, nullptr, 'o'},
                                   {"into", required_argument, nullptr, 'd'},
                                   {"force", no_argument, nullptr, 'f'},
                                   {"game", required_argument, nullptr, 'g'},
                                   {"ply", required_argument, nullptr, 'p'},
                                   {"moves", no_argument, nullptr, 'm'},
                                   {"user", required_argument, nullptr, 'u'},
                                   {"code-page", required_argument, nullptr, 'c'},
                                   {"help", no_argument, nullptr, 'h'},
                                   {"version", no_argument, nullptr, 'V'},
                                   {}};
    Request request;
    Options& options = request.Wanted;
    options.CodePage = codePage;
    for (int letter = 0; (letter = getopt_long(argc, argv, "o:d:fg:p:mu:c:hV", known, nullptr)) != -1;) {
        const std::string value = optarg != nullptr ? optarg : "";
        switch (letter) {
        case 'o':
            options.Output = value;
            break;
        case 'd':
            options.Folder = value.empty() ? "." : value;
            break;
        case 'f':
            options.Force = true;
            break;
        case 'g':
            options.GameNumber = ReadNumber("--game", value, 1, Any);
            break;
        case 'p':
            options.Ply = ReadNumber("--ply", value, 0, Any);
            break;
        case 'm':
            options.ShowMoves = true;
            break;
        case 'u':
            options.UserIsWhite = ReadUser(value);
            break;
        case 'c':
            options.CodePage = ReadCodePage(value);
            break;
        case 'h':
            request.Help = true;
            return request;
        case 'V':
            request.Version = true;
            return request;
        default:
            throw UsageError(""); // getopt has said what is wrong
        }
    }
    if (optind == argc) throw UsageError("a command is missing");
    options.What = ReadCommand(argv[optind]);
    options.Inputs.assign(argv + optind + 1, argv + argc);
    if (options.Inputs.empty()) options.Inputs.emplace_back("-");
    CheckTogether(options);
    return request;
}

} // namespace quarnel::record
