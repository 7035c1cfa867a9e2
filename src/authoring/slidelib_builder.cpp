#include "authoring/slidelib_builder.h"

#include <filesystem>
#include <fstream>

#include "platform/environment.h"
#include "platform/files.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {
namespace slide {

std::string entryNameForFile(const std::string& path) {
    auto sep = path.find_last_of("\\/");
    std::string base = sep == std::string::npos ? path : path.substr(sep + 1);
    auto dot = base.rfind('.');
    if (dot != std::string::npos) base.erase(dot);  // ".sld" has no name at all
    for (char& c : base)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (base.empty()) throw SlideError("no slide name in \"" + path + "\"");
    if (base.size() > kMaxEntryName)
        throw SlideError("slide name \"" + base + "\" longer than 31 characters (" + path + ")");
    return base;
}

std::vector<std::string> readSlideList(std::istream& list) {
    std::vector<std::string> paths;
    std::string line;
    while (std::getline(list, line)) {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
            line.pop_back();
        std::size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos) continue;
        paths.push_back(platform::nativePath(line.substr(start)));
    }
    return paths;
}

void buildLibraryFile(const std::string& libraryNativePath,
                      const std::vector<std::string>& slideNativePaths) {
    if (slideNativePaths.empty()) throw SlideError("no slides listed");
    std::vector<LibraryInput> inputs;
    for (const auto& gelistet : slideNativePaths) {
        // Like the host's tool, a name without extension means the ".sld" file.
        std::string p = gelistet;
        auto sep = p.find_last_of("\\/");
        auto dot = p.rfind('.');
        if ((dot == std::string::npos || (sep != std::string::npos && dot < sep)) &&
            !std::filesystem::exists(platform::utf8Path(p)))
            p += ".sld";
        LibraryInput in;
        in.name = entryNameForFile(p);
        for (const auto& earlier : inputs)
            if (earlier.name == in.name)
                throw SlideError("slide name \"" + in.name + "\" occurs twice (" + p + ")");
        in.slideBytes = readFileBytes(p);
        try {
            (void)readSlide(in.slideBytes);
        } catch (const SlideError& e) {
            throw SlideError(p + ": " + e.what());
        }
        inputs.push_back(std::move(in));
    }
    writeFileBytes(libraryNativePath, writeSlideLibrary(inputs));
}

}  // namespace slide

}  // namespace tessara
