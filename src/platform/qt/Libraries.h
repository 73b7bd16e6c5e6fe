// Shared libraries by base name, counted, for the desktop's load, release and look-up.
//
// A library that was loaded once stays mapped for as long as the process runs; releasing only counts. So a probe may
// release until that fails, and the code is there when an export is looked up afterwards. Program thread only.
#pragma once

#include "platform/Desktop.h"

#include <QLibrary>

#include <memory>
#include <vector>

namespace quarnel {

class Libraries {
  public:
    /// Libraries are looked for in `folder` first, then where the system finds them.
    explicit Libraries(QString folder) : folder_(std::move(folder)) {}

    LibraryHandle Load(const Text& name);
    bool Release(LibraryHandle library);
    void* FindSymbol(const Text& name, const char* symbol);

  private:
    struct Library {
        Text Name;
        std::unique_ptr<QLibrary> Code; ///< loaded
        int Count = 0;
    };

    Library* Find(const Text& name);

    QString folder_;
    std::vector<Library> libraries_; ///< a handle is an index into it, plus one
};

} // namespace quarnel
