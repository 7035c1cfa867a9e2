#pragma once
// The user's hand on a real X server, through XTest on a connection of its
// own, and the programs the tests start. Xlib stays in the .cpp, where its
// macros cannot meet GoogleTest's.
#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace tessara::test {

class Hand {
  public:
    Hand();
    ~Hand();
    Hand(const Hand&) = delete;
    Hand& operator=(const Hand&) = delete;
    // Presses a mouse button (1 left, 3 right) at root position x, y, holds
    // it until `halten` returns (the program has taken the pick), releases it.
    void klick(unsigned int knopf, int x, int y, const std::function<void()>& halten);
    // Presses Escape, holds it until `halten` returns, releases it.
    void escape(const std::function<void()>& halten);
    // Presses and releases Enter, as a typed key: held, it would repeat into
    // whatever window takes the focus next.
    void enter();
    // Presses and releases a letter or digit key.
    void buchstabe(char c);
    // The arrow key down, as a list is walked.
    void runter();
    // The letter with Ctrl held, as a menu shortcut is typed.
    void strg(char c);

  private:
    void taste(unsigned long keysym, const std::function<void()>& halten);
    void* dpy_;
};

// Starts a program with this process's environment, `umgebung`
// ("NAME=wert") put over it; `ausgabe`, when given, takes its standard
// output and error.
pid_t prozessStarten(const std::vector<std::string>& args,
                     const std::vector<std::string>& umgebung = {},
                     const std::string& ausgabe = {});
void prozessBeenden(pid_t pid);

}  // namespace tessara::test
