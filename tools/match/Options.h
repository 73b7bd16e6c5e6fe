// The command lines of quarnel-match and quarnel-ladder.
#pragma once

#include "Match.h"

#include <CLI/CLI.hpp>

namespace quarnel::match {

/// Lets `app` read the arguments of quarnel-match into `setup`, which is whole and sound once they are parsed.
void AddMatchOptions(CLI::App& app, MatchSetup& setup);

/// What both programs have: --games, --concurrency and --seed.
void AddCommonOptions(CLI::App& app, int& games, int& concurrency, std::uint64_t& seed);

enum ExitCode { Done = 0, Failed = 1, Misused = 2, Stopped = 3 };

/// Parses the arguments of main(), runs `program` and turns what either throws into messages and exit codes.
int RunProgram(CLI::App& app, int argc, char** argv, const std::function<ExitCode()>& program);

} // namespace quarnel::match
