#include "eigener_x_server.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/select.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

extern char** environ;

namespace tessara::test {

namespace {

using Uhr = std::chrono::steady_clock;

// Starts a program with this process's environment, DISPLAY replaced when
// `display` is given; its output goes nowhere.
pid_t starten(std::vector<std::string> args, const std::string& display = {}) {
    std::vector<char*> argv;
    for (auto& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    std::string displayEintrag = "DISPLAY=" + display;
    std::vector<char*> envp;
    for (char** e = environ; *e; ++e)
        if (display.empty() || std::string(*e).rfind("DISPLAY=", 0) != 0) envp.push_back(*e);
    if (!display.empty()) envp.push_back(displayEintrag.data());
    envp.push_back(nullptr);
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_addopen(&fa, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&fa, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = -1;
    if (posix_spawnp(&pid, argv[0], &fa, nullptr, argv.data(), envp.data()) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&fa);
    return pid;
}

bool fensterverwaltungDa(Display* d) {
    const Atom check = XInternAtom(d, "_NET_SUPPORTING_WM_CHECK", False);
    Atom type;
    int format;
    unsigned long n = 0, after;
    unsigned char* data = nullptr;
    XGetWindowProperty(d, DefaultRootWindow(d), check, 0, 1, False, XA_WINDOW, &type, &format, &n,
                       &after, &data);
    if (data) XFree(data);
    return n == 1;
}

}  // namespace

EigenerXServer::EigenerXServer(bool mitFensterverwaltung) {
    int fds[2];
    if (pipe(fds) != 0) return;
    fcntl(fds[0], F_SETFD, FD_CLOEXEC);
    xvfb_ = starten({"Xvfb", "-displayfd", std::to_string(fds[1]), "-screen", "0", "1024x768x24",
                     "-nolisten", "tcp", "-noreset"});
    close(fds[1]);
    std::string nummer;
    char c;
    while (read(fds[0], &c, 1) == 1 && c != '\n') nummer += c;
    close(fds[0]);
    if (nummer.empty()) return;
    name_ = ":" + nummer;
    if (!mitFensterverwaltung) {
        bereit_ = true;
        return;
    }
    wm_ = starten({"openbox", "--sm-disable"}, name_);
    // Ready once the manager announces itself on the root window.
    bereit_ = warteAufDesktop(name_, [this] {
        Display* d = XOpenDisplay(name_.c_str());
        const bool da = d && fensterverwaltungDa(d);
        if (d) XCloseDisplay(d);
        return da;
    });
}

EigenerXServer::~EigenerXServer() {
    for (pid_t p : {wm_, xvfb_})
        if (p > 0) {
            kill(p, SIGTERM);
            waitpid(p, nullptr, 0);
        }
}

void warteAufVerbindung(int fd, std::chrono::steady_clock::time_point ende) {
    const auto rest = std::chrono::duration_cast<std::chrono::microseconds>(ende - Uhr::now());
    if (rest.count() <= 0) return;
    fd_set fds;
    FD_ZERO(&fds);
    FD_SET(fd, &fds);
    timeval tv{static_cast<time_t>(rest.count() / 1000000),
               static_cast<suseconds_t>(rest.count() % 1000000)};
    select(fd + 1, &fds, nullptr, nullptr, &tv);
}

void EigenesDisplay::SetUp() {
    server_ = std::make_unique<EigenerXServer>();
    ASSERT_TRUE(server_->bereit()) << "Xvfb did not start (scripts/setup-deps installs it)";
    setenv("DISPLAY", server_->name().c_str(), 1);
}

bool warteAufDesktop(const std::string& display, const std::function<bool()>& bedingung,
                     std::chrono::milliseconds grenze) {
    const auto ende = Uhr::now() + grenze;
    Display* d = XOpenDisplay(display.empty() ? nullptr : display.c_str());
    if (!d) return false;
    XSelectInput(d, DefaultRootWindow(d), SubstructureNotifyMask | PropertyChangeMask);
    XSync(d, False);
    bool erfuellt = bedingung();
    while (!erfuellt && Uhr::now() < ende) {
        if (!XPending(d)) warteAufVerbindung(ConnectionNumber(d), ende);
        while (XPending(d)) {
            XEvent e;
            XNextEvent(d, &e);
        }
        erfuellt = bedingung();
    }
    XCloseDisplay(d);
    return erfuellt;
}

}  // namespace tessara::test
