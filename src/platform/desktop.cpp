#include "platform/desktop.h"

#include "platform/case_fold.h"

namespace platform {

bool Desktop::activateByTitle(const std::string& title) {
    if (title.empty()) return false;
    const auto windows = topLevelWindows();
    for (const auto& w : windows)
        if (equalsIgnoreCase(w.title, title)) return bringToFront(w.handle);
    for (const auto& w : windows)
        if (startsWithIgnoreCase(w.title, title)) return bringToFront(w.handle);
    return false;
}

}  // namespace platform
