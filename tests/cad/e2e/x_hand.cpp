#include "x_hand.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

extern char** environ;

namespace tessara::test {

using namespace std::chrono_literals;

Hand::Hand() : dpy_(XOpenDisplay(nullptr)) {}

Hand::~Hand() {
    if (dpy_) XCloseDisplay(static_cast<Display*>(dpy_));
}

void Hand::klick(unsigned int knopf, int x, int y) {
    auto* d = static_cast<Display*>(dpy_);
    if (!d) return;
    XTestFakeMotionEvent(d, -1, x, y, CurrentTime);
    XTestFakeButtonEvent(d, knopf, True, CurrentTime);
    XSync(d, False);
    std::this_thread::sleep_for(400ms);  // held while the program polls
    XTestFakeButtonEvent(d, knopf, False, CurrentTime);
    XSync(d, False);
}

void Hand::escape() {
    auto* d = static_cast<Display*>(dpy_);
    if (!d) return;
    const KeyCode k = XKeysymToKeycode(d, XK_Escape);
    XTestFakeKeyEvent(d, k, True, CurrentTime);
    XSync(d, False);
    std::this_thread::sleep_for(400ms);
    XTestFakeKeyEvent(d, k, False, CurrentTime);
    XSync(d, False);
}

bool xDisplayOffen() {
    if (Display* d = XOpenDisplay(nullptr)) {
        XCloseDisplay(d);
        return true;
    }
    return false;
}

pid_t prozessStarten(const std::vector<std::string>& args) {
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) return 0;
    return pid;
}

void prozessBeenden(pid_t pid) {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    int status = 0;
    for (int i = 0; i < 100; ++i) {
        if (waitpid(pid, &status, WNOHANG) == pid) return;
        std::this_thread::sleep_for(20ms);
    }
    kill(pid, SIGKILL);
    waitpid(pid, &status, 0);
}

pid_t xvfbStarten() {
    namespace fs = std::filesystem;
    for (int n = 91; n < 120; ++n) {
        if (fs::exists("/tmp/.X11-unix/X" + std::to_string(n)) ||
            fs::exists("/tmp/.X" + std::to_string(n) + "-lock"))
            continue;
        const std::string name = ":" + std::to_string(n);
        pid_t pid = prozessStarten(
            {"/usr/bin/Xvfb", name, "-screen", "0", "1024x768x24", "-nolisten", "tcp"});
        if (!pid) return 0;
        for (int i = 0; i < 100; ++i) {
            std::this_thread::sleep_for(50ms);
            if (Display* d = XOpenDisplay(name.c_str())) {
                XCloseDisplay(d);
                setenv("DISPLAY", name.c_str(), 1);
                return pid;
            }
        }
        prozessBeenden(pid);
    }
    return 0;
}

}  // namespace tessara::test
