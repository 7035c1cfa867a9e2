#pragma once
// The class identifier of the fake AutoCAD server, shared by the server and
// the test that registers it under "AutoCAD.Application" in its wine prefix.
#include <windows.h>

namespace tessara::test {

// {C1EC986F-AD65-4D97-978A-8E4AB0BAAA32}
inline constexpr GUID kFakeAcadClsid = {
    0xc1ec986f, 0xad65, 0x4d97, {0x97, 0x8a, 0x8e, 0x4a, 0xb0, 0xba, 0xaa, 0x32}};
inline constexpr const wchar_t* kFakeAcadClsidText = L"{C1EC986F-AD65-4D97-978A-8E4AB0BAAA32}";

}  // namespace tessara::test
