// Games of the engine against itself, as the program saves them.
#pragma once

#include <string>
#include <vector>

namespace quarnel {

/// The same ones each time. In every second one the user is Black, and every tenth begins with Black's move.
std::vector<std::string> SavedEngineGames(int count);

} // namespace quarnel
