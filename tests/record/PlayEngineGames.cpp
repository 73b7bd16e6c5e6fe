// play-engine-games FOLDER COUNT: writes so many saved games of the engine into the folder.
#include "EngineGames.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    std::filesystem::create_directories(argv[1]);
    int number = 1000;
    for (const std::string& record : quarnel::SavedEngineGames(std::atoi(argv[2])))
        std::ofstream(std::filesystem::path(argv[1]) / (std::to_string(number++) + ".txt"), std::ios::binary) << record;
}
