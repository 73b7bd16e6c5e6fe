// The real desktop: windows, menus, dialogs and fonts through the Qt toolkit.
//
// Start at MakeQtDesktop(). This header names nothing of the toolkit, so that whoever includes it does not depend on
// it. Program thread only, which must be the process's first thread.
#pragma once

#include "platform/Desktop.h"

#include <memory>

namespace quarnel {

/// The desktop of this process; make one and keep it for as long as the process runs. `argc` and `argv` must stay
/// alive with it; the toolkit takes its own options out of them. Without a display the toolkit ends the process with
/// a message of its own.
///
/// After a form's load procedure has ended, `for (;;) { desktop.WaitEvent(); desktop.ProcessEvents(); }` drives it;
/// the wait sleeps in the toolkit and costs nothing. Only EndProcess() ends the process, and it does so without
/// running destructors.
std::unique_ptr<Desktop> MakeQtDesktop(int& argc, char** argv);

} // namespace quarnel
