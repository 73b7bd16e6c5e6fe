// quarnel-record: games of Quarnel Chess for other programs, and theirs for it.
#include "Conversion.h"
#include "platform/CodePage.h"
#include "platform/posix/CharacterLocale.h"

#include <iostream>

int main(int argc, char** argv) {
    using namespace quarnel::record;
    try {
        const Request request = ReadCommandLine(argc, argv, quarnel::CodePageOfLocale(quarnel::CharacterLocale()));
        if (request.Help) std::cout << HelpText;
        if (request.Version) std::cout << "quarnel-record (Quarnel Chess) " QUARNEL_VERSION "\n";
        if (request.Help || request.Version) return std::cout.flush() ? 0 : 1;
        return Conversion(request.Wanted, std::cin, std::cout, std::cerr).Run();
    } catch (const UsageError& error) {
        if (*error.what() != '\0') std::cerr << "quarnel-record: " << error.what() << '\n';
        std::cerr << "Try \"quarnel-record --help\".\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "quarnel-record: " << error.what() << '\n';
        return 1;
    }
}
