#include "x_hand.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <string_view>
#include <thread>

extern char** environ;

namespace tessara::test {

using namespace std::chrono_literals;

Hand::Hand() : dpy_(XOpenDisplay(nullptr)) {}

Hand::~Hand() {
    if (dpy_) XCloseDisplay(static_cast<Display*>(dpy_));
}

void Hand::klick(unsigned int knopf, int x, int y, const std::function<void()>& halten) {
    auto* d = static_cast<Display*>(dpy_);
    if (!d) return;
    XTestFakeMotionEvent(d, -1, x, y, CurrentTime);
    XTestFakeButtonEvent(d, knopf, True, CurrentTime);
    XSync(d, False);
    halten();
    XTestFakeButtonEvent(d, knopf, False, CurrentTime);
    XSync(d, False);
}

void Hand::escape(const std::function<void()>& halten) { taste(XK_Escape, halten); }

void Hand::enter() { taste(XK_Return, {}); }

// Latin-1 letters and digits have their character code as keysym.
void Hand::buchstabe(char c) { taste(static_cast<unsigned char>(c), {}); }

void Hand::runter() { taste(XK_Down, {}); }

void Hand::strg(char c) {
    auto* d = static_cast<Display*>(dpy_);
    if (!d) return;
    const KeyCode strg = XKeysymToKeycode(d, XK_Control_L);
    XTestFakeKeyEvent(d, strg, True, CurrentTime);
    taste(static_cast<unsigned char>(c), {});
    XTestFakeKeyEvent(d, strg, False, CurrentTime);
    XSync(d, False);
}

void Hand::taste(unsigned long keysym, const std::function<void()>& halten) {
    auto* d = static_cast<Display*>(dpy_);
    if (!d) return;
    const KeyCode k = XKeysymToKeycode(d, keysym);
    XTestFakeKeyEvent(d, k, True, CurrentTime);
    XSync(d, False);
    if (halten) halten();
    XTestFakeKeyEvent(d, k, False, CurrentTime);
    XSync(d, False);
}

pid_t prozessStarten(const std::vector<std::string>& args, const std::vector<std::string>& umgebung,
                     const std::string& ausgabe) {
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (char** e = environ; *e; ++e) {
        const std::string_view v = *e;
        bool ersetzt = false;
        for (const auto& u : umgebung)
            ersetzt = ersetzt || v.substr(0, v.find('=') + 1) == u.substr(0, u.find('=') + 1);
        if (!ersetzt) envp.push_back(*e);
    }
    for (const auto& u : umgebung) envp.push_back(const_cast<char*>(u.c_str()));
    envp.push_back(nullptr);
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    if (!ausgabe.empty()) {
        posix_spawn_file_actions_addopen(&fa, 1, ausgabe.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0644);
        posix_spawn_file_actions_adddup2(&fa, 1, 2);
    }
    pid_t pid = 0;
    const int fehler = posix_spawn(&pid, argv[0], &fa, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&fa);
    return fehler == 0 ? pid : 0;
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

}  // namespace tessara::test
