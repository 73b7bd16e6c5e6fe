// The command line of quarnel-match, and what both programs share of theirs.
#pragma once

#include "Match.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace quarnel::match {

/// The command line cannot be obeyed; the text says why.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Words of a command line, taken one after the other.
class Words {
  public:
    explicit Words(std::vector<std::string> words) : words_(std::move(words)) {}
    bool AtEnd() const { return next_ == words_.size(); }
    /// The next word starts with "--".
    bool AtOption() const { return !AtEnd() && words_[next_].starts_with("--"); }
    std::string Next() { return words_[next_++]; }
    /// The value of `option`; throws UsageError when it is missing or out of range.
    std::string Value(const std::string& option);
    int Number(const std::string& option, int lowest, int highest);

  private:
    std::vector<std::string> words_;
    std::size_t next_ = 0;
};

/// `text` as a number, or UsageError that speaks of `option`.
int ReadInteger(const std::string& option, const std::string& text, int lowest, int highest);

/// The arguments of quarnel-match, without the program's name. Throws UsageError.
MatchSetup ReadMatchArguments(const std::vector<std::string>& arguments);
extern const char* const MatchUsage;

/// Raised by SIGINT and SIGTERM once the function was called; a second signal ends the program at once.
const std::atomic<bool>& WatchSignals();

enum ExitCode { Done = 0, Failed = 1, Misused = 2, Stopped = 3 };

/// Runs `program` over the arguments of main() and turns what it throws into messages and exit codes:
/// Misused for UsageError, Failed for any other std::exception. "--help" shows `usage` and nothing else.
int RunProgram(int argc, char** argv, const char* usage, ExitCode (*program)(const std::vector<std::string>&));

} // namespace quarnel::match
