#pragma once
// The user's hand on a real X server, through XTest on a connection of its
// own; and a private Xvfb for runs without $DISPLAY. Xlib stays in the .cpp,
// where its macros cannot meet GoogleTest's.
#include <sys/types.h>

#include <string>
#include <vector>

namespace tessara::test {

class Hand {
  public:
    Hand();
    ~Hand();
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;
    // Presses a mouse button (1 left, 3 right) at root position x, y, holds it
    // while the program polls, releases it.
    void klick(unsigned int knopf, int x, int y);
    // Presses and holds Escape, then releases it.
    void escape();
    // Presses and releases Enter, as a typed key: held, it would repeat into
    // whatever window takes the focus next.
    void enter();

  private:
    void taste(unsigned long keysym, bool halten);
    void* dpy_;
};

// Whether a display can be opened.
bool xDisplayOffen();
// Starts Xvfb on a free display, sets $DISPLAY; the pid, 0 when none started.
pid_t xvfbStarten();

// Starts a program with this process's environment, `umgebung`
// ("NAME=wert") put over it; `ausgabe`, when given, takes its standard
// output and error.
pid_t prozessStarten(const std::vector<std::string>& args,
                     const std::vector<std::string>& umgebung = {},
                     const std::string& ausgabe = {});
void prozessBeenden(pid_t pid);

}  // namespace tessara::test
