// How long the batch tool waits for a database another process has locked:
// TESSARA_LOCK_WAIT seconds (10 unless set), with a line on stderr for every
// second past the first, so a script that seems to hang says why.
#include <chrono>
#include <cstdlib>
#include <ostream>
#include <string>

#include "cli/cli.h"

namespace cli {

namespace {
constexpr const char* kVariable = "TESSARA_LOCK_WAIT";
}

bool lockWaitSeconds(double& seconds, std::string& problem) {
    seconds = 10;
    const char* text = std::getenv(kVariable);
    if (!text || !*text) return true;
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (*end != '\0' || !(value >= 0) || value > 86400) {
        problem =
            std::string(kVariable) + "=" + text + ": not a number of seconds between 0 and 86400";
        return false;
    }
    seconds = value;
    return true;
}

jet::filelock::Wait lockWait(std::ostream& err) {
    double seconds = 10;
    std::string ignored;
    lockWaitSeconds(seconds, ignored);  // main() has refused a bad value
    jet::filelock::Wait wait;
    wait.limit = std::chrono::milliseconds(static_cast<long long>(seconds * 1000 + 0.5));
    wait.report = [&err](const jet::filelock::WaitReport& r) {
        if (r.ended || r.waited < std::chrono::seconds(1)) return;
        err << "tessara-cli: waiting for the lock held by another process, "
            << std::chrono::duration_cast<std::chrono::seconds>(r.waited).count() << " s of "
            << std::chrono::duration_cast<std::chrono::duration<double>>(r.limit).count() << " s"
            << std::endl;
    };
    return wait;
}

}  // namespace cli
