#include "platform/qt/Libraries.h"

#include <algorithm>

#include <dlfcn.h>

namespace quarnel {

namespace {

void* LoadCode(const std::filesystem::path& folder, const Text& name) {
    const std::string fileName = "lib" + ToUtf8(name) + ".so";
    void* code = dlopen((folder / fileName).c_str(), RTLD_NOW | RTLD_LOCAL);
    return code != nullptr ? code : dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
}

} // namespace

Libraries::Library* Libraries::Find(const Text& name) {
    const auto known = std::find_if(libraries_.begin(), libraries_.end(),
                                    [&](const Library& library) { return library.Name == name; });
    if (known != libraries_.end()) return &*known;
    void* code = LoadCode(folder_, name);
    if (code == nullptr) return nullptr;
    libraries_.push_back({name, code, 0});
    return &libraries_.back();
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
    return library != nullptr ? dlsym(library->Code, symbol) : nullptr;
}

} // namespace quarnel
