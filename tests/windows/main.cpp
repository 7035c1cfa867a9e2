// The Windows test executable. Started with "--channel-helper" it is the
// second process of the instance-channel tests instead (see
// channel_helper_main in win32_instance_channel_test.cpp).
#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: shellapi.h builds on it.
#include <shellapi.h>

#include <string>
#include <vector>

#include "platform/win32/utf16.h"

int channelHelperMain(int argc, char** argv);

int main(int argc, char** argv) {
    // The helper's arguments carry non-ASCII text: take them from the wide
    // command line, as the ANSI argv would lose it.
    int wargc = 0;
    LPWSTR* wargv = CommandLineToArgvW(GetCommandLineW(), &wargc);
    if (wargv && wargc > 1 && std::wstring(wargv[1]) == L"--channel-helper") {
        std::vector<std::string> args;
        for (int i = 2; i < wargc; ++i) args.push_back(platform::win32::toUtf8(wargv[i]));
        LocalFree(wargv);
        std::vector<char*> ptrs;
        for (auto& a : args) ptrs.push_back(a.data());
        ptrs.push_back(nullptr);
        return channelHelperMain(static_cast<int>(args.size()), ptrs.data());
    }
    if (wargv) LocalFree(wargv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
