#include "platform/qt/Libraries.h"

#include "platform/qt/Conversions.h"

#include <algorithm>

namespace quarnel {

Libraries::Library* Libraries::Find(const Text& name) {
    const auto known = std::find_if(libraries_.begin(), libraries_.end(),
                                    [&](const Library& library) { return library.Name == name; });
    if (known != libraries_.end()) return &*known;
    const QString fileName = QStringLiteral("lib%1.so").arg(ToQString(name));
    for (const QString& path : {folder_ + u'/' + fileName, fileName}) {
        auto code = std::make_unique<QLibrary>(path);
        code->setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
        if (!code->load()) continue;
        libraries_.push_back({name, std::move(code), 0});
        return &libraries_.back();
    }
    return nullptr;
}

LibraryHandle Libraries::Load(const Text& name) {
    Library* library = Find(name);
    if (library == nullptr) return 0;
    ++library->Count;
    return static_cast<LibraryHandle>(library - libraries_.data()) + 1;
}

bool Libraries::Release(LibraryHandle library) {
    if (library < 1 || static_cast<std::size_t>(library) > libraries_.size()) return false;
    int& count = libraries_[static_cast<std::size_t>(library) - 1].Count;
    if (count == 0) return false;
    --count;
    return true;
}

void* Libraries::FindSymbol(const Text& name, const char* symbol) {
    const Library* library = Find(name);
    return library != nullptr ? reinterpret_cast<void*>(library->Code->resolve(symbol)) : nullptr;
}

} // namespace quarnel
