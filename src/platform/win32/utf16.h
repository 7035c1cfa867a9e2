#pragma once
// UTF-8 inside the program, UTF-16 at every Windows API.
#include <string>
#include <string_view>

namespace platform::win32 {

std::wstring toWide(std::string_view utf8);
std::string toUtf8(std::wstring_view wide);

}  // namespace platform::win32
