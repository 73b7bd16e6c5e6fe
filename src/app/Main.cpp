#include "app/Program.h"
#include "platform/qt/QtDesktop.h"

int main(int argc, char** argv) {
    const auto desktop = quarnel::MakeQtDesktop(argc, argv);
    quarnel::Program program(*desktop);
    program.Run();
    // Without an engine the desktop's events drive the window until it is closed.
    for (;;) {
        desktop->WaitEvent();
        desktop->ProcessEvents();
    }
}
