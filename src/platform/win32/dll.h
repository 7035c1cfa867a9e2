#pragma once
// DLLs loaded at run time, for the few libraries the program can only take
// from the user's machine (PostgreSQL's libpq.dll of a client installation).
#include <string>

namespace platform::win32 {

using DllFunction = void (*)();

// The DLL of that file name, from the program's directory, the system's or
// PATH (the DLLs it needs itself looked for beside it); nullptr when it is
// nowhere. Loaded once for the process and never unloaded.
void* loadDll(const std::string& fileName);

// The exported function of that name, to be cast to its real type;
// nullptr when the DLL has none.
DllFunction dllFunction(void* dll, const char* name);

}  // namespace platform::win32
