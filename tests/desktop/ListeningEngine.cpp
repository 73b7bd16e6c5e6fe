// The engine library with an ear at its door: every command line goes on to the real one and into the file that
// QUARNEL_COMMAND_LOG names. The other functions are the real library's own, found through this one's link to it.
//
// The shortest searches become shorter still, and the longest ends only when it is told to, so that no test has to be
// faster than a search.
#include "QuarnelChess.h"

#include <cstdlib>
#include <cstring>
#include <fstream>

#include <dlfcn.h>

void quarnel_ReceiveTxt(const char* line) {
    static const auto real = reinterpret_cast<void (*)(const char*)>(dlsym(RTLD_NEXT, "quarnel_ReceiveTxt"));
    std::ofstream(std::getenv("QUARNEL_COMMAND_LOG"), std::ios::app) << line << '\n';
    if (std::strcmp(line, "skill 10 5") == 0) line = "skill 10 1";
    if (std::strcmp(line, "skill 100 100") == 0) line = "skill 100 32000";
    real(line);
}
