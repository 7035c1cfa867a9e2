#include "platform/win32/dll.h"

#include <windows.h>

#include "platform/win32/utf16.h"

namespace platform::win32 {

void* loadDll(const std::string& fileName) {
    const std::wstring name = toWide(fileName);
    HMODULE module = LoadLibraryExW(
        name.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS | LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR);
    // The search above keeps to the program's and the system's directories;
    // a client installation is found on PATH by the ordinary search.
    if (!module) module = LoadLibraryW(name.c_str());
    return module;
}

DllFunction dllFunction(void* dll, const char* name) {
    const FARPROC p = GetProcAddress(static_cast<HMODULE>(dll), name);
    return reinterpret_cast<DllFunction>(p);
}

}  // namespace platform::win32
