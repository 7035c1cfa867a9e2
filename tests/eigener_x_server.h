#pragma once
// An X server of the test's own. A test that relies on the input focus or on
// the order of windows must not share its display with the windowed tests
// ctest runs beside it: their windows take the focus and the keys typed.
// Xvfb picks a free display itself and names it on a pipe once it accepts
// connections, so servers started side by side never meet, and nothing
// waits on a clock for it. Xlib stays in the .cpp, where its macros cannot
// meet GoogleTest's.
#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace tessara::test {

class EigenerXServer {
  public:
    // mitFensterverwaltung: with an EWMH window manager (openbox) on it, as
    // on a user's desktop; ready once the manager has announced itself.
    explicit EigenerXServer(bool mitFensterverwaltung = false);
    ~EigenerXServer();
    EigenerXServer(const EigenerXServer&) = delete;
    EigenerXServer& operator=(const EigenerXServer&) = delete;

    bool bereit() const { return bereit_; }
    const std::string& name() const { return name_; }  // ":<n>"

  private:
    pid_t xvfb_ = -1, wm_ = -1;
    std::string name_;
    bool bereit_ = false;
};

// For a test program whose tests all need a display of their own: the
// server starts before the first test and becomes $DISPLAY of the process
// and of every program it starts. ctest runs each test in a process of its
// own, so each test has a server of its own.
class EigenesDisplay : public ::testing::Environment {
  public:
    void SetUp() override;
    void TearDown() override { server_.reset(); }

  private:
    std::unique_ptr<EigenerXServer> server_;
};

// Waits until the condition holds, looking again whenever the root window of
// the display reports a change (a window mapped, restacked or activated, a
// property set); false when the bound passes first. An empty display name is
// $DISPLAY.
bool warteAufDesktop(const std::string& display, const std::function<bool()>& bedingung,
                     std::chrono::milliseconds grenze = std::chrono::seconds(20));

// Waits until the X connection (its file descriptor, ConnectionNumber) has
// something to read or the time is up.
void warteAufVerbindung(int fd, std::chrono::steady_clock::time_point ende);

}  // namespace tessara::test
