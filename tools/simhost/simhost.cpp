// simhost: a stand-in for the CAD host in end-to-end tests. One X11 window
// with the title given on the command line, a drawing, and a command line
// that takes typed keys and mouse picks (see sim_interpreter.h).
//
//   simhost --title "AutoCAD LT 2015 - [Zeichnung1.dwg]" --log /tmp/host.log
//
// Program paths such as "c:\temp\bv8LT.scr" are mapped to files exactly as
// the program maps them (TESSARA_DRIVE_C and friends).
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

#include "sim_interpreter.h"

namespace {

volatile std::sig_atomic_t beenden = 0;
void signalBeenden(int) { beenden = 1; }

constexpr int kZeile = 24;  // height of the command line below the drawing

void zeichnen(Display* dpy, Window w, GC gc, const simhost::SimInterpreter& host,
              const std::string& puffer) {
    XClearWindow(dpy, w);
    const int h = simhost::SimInterpreter::kHoehe;
    for (const auto& l : host.zeichnung()) {
        XDrawLine(dpy, w, gc, l.x1, h - 1 - l.y1, l.x2, h - 1 - l.y2);
    }
    XDrawLine(dpy, w, gc, 0, h, simhost::SimInterpreter::kBreite, h);
    const std::string zeile = host.prompt() + " " + puffer;
    XDrawString(dpy, w, gc, 4, h + kZeile - 8, zeile.c_str(), static_cast<int>(zeile.size()));
    XFlush(dpy);
}

}  // namespace

int main(int argc, char** argv) {
    std::string titel = "AutoCAD LT 2015 - [Zeichnung1.dwg]";
    std::string logDatei;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string a = argv[i];
        if (a == "--title") {
            titel = argv[i + 1];
        } else if (a == "--log") {
            logDatei = argv[i + 1];
        } else {
            std::cerr << "simhost: unbekannte Option " << a << "\n";
            return 2;
        }
    }
    if (logDatei.empty()) {
        std::cerr << "usage: simhost --title TITLE --log FILE\n";
        return 2;
    }
    std::ofstream log(logDatei, std::ios::app);
    if (!log) {
        std::cerr << "simhost: cannot write " << logDatei << "\n";
        return 1;
    }
    std::signal(SIGTERM, signalBeenden);
    std::signal(SIGINT, signalBeenden);

    Display* dpy = XOpenDisplay(nullptr);
    if (!dpy) {
        std::cerr << "simhost: no X display\n";
        return 1;
    }
    const int screen = DefaultScreen(dpy);
    const int breite = simhost::SimInterpreter::kBreite;
    const int hoehe = simhost::SimInterpreter::kHoehe + kZeile;
    Window w = XCreateSimpleWindow(dpy, RootWindow(dpy, screen), 0, 0, breite, hoehe, 1,
                                   BlackPixel(dpy, screen), WhitePixel(dpy, screen));
    XStoreName(dpy, w, titel.c_str());
    const Atom netWmName = XInternAtom(dpy, "_NET_WM_NAME", False);
    const Atom utf8 = XInternAtom(dpy, "UTF8_STRING", False);
    XChangeProperty(dpy, w, netWmName, utf8, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(titel.data()),
                    static_cast<int>(titel.size()));
    Atom loeschen = XInternAtom(dpy, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(dpy, w, &loeschen, 1);
    XSelectInput(dpy, w, ExposureMask | KeyPressMask | ButtonPressMask | StructureNotifyMask);
    XMapRaised(dpy, w);
    GC gc = XCreateGC(dpy, w, 0, nullptr);
    XSetForeground(dpy, gc, BlackPixel(dpy, screen));

    simhost::SimInterpreter host(log);
    log << "START " << titel << "\n";
    log.flush();

    std::string puffer;
    bool inAnfuehrung = false;
    const int fd = ConnectionNumber(dpy);
    while (!beenden) {
        if (!XPending(dpy)) {
            // Wait for the server with a timeout so a signal ends the loop.
            fd_set fds;
            FD_ZERO(&fds);
            FD_SET(fd, &fds);
            timeval tv{0, 200000};
            select(fd + 1, &fds, nullptr, nullptr, &tv);
            continue;
        }
        XEvent ev;
        XNextEvent(dpy, &ev);
        switch (ev.type) {
            case MappingNotify:
                XRefreshKeyboardMapping(&ev.xmapping);
                break;
            case ClientMessage:
                if (static_cast<Atom>(ev.xclient.data.l[0]) == loeschen) beenden = 1;
                break;
            case ButtonPress:
                if (ev.xbutton.button == Button1) {
                    host.linksklick(ev.xbutton.x,
                                    simhost::SimInterpreter::kHoehe - 1 - ev.xbutton.y);
                } else if (ev.xbutton.button == Button3) {
                    host.rechtsklick();
                }
                break;
            case KeyPress: {
                char text[16] = {};
                KeySym sym = NoSymbol;
                const int n = XLookupString(&ev.xkey, text, sizeof text - 1, &sym, nullptr);
                if (sym == XK_Escape) {
                    puffer.clear();
                    inAnfuehrung = false;
                    host.escape();
                } else if (sym == XK_Return || sym == XK_KP_Enter) {
                    const std::string eingabe = puffer;
                    puffer.clear();
                    inAnfuehrung = false;
                    host.eingabe(eingabe);
                } else if (sym == XK_BackSpace) {
                    if (!puffer.empty()) puffer.pop_back();
                } else if (n > 0) {
                    for (int i = 0; i < n; ++i) {
                        const char c = text[i];
                        if (c == '"') inAnfuehrung = !inAnfuehrung;
                        // The blank ends an input as Enter does, except in quotes.
                        if (c == '\r' || c == '\n' || (c == ' ' && !inAnfuehrung)) {
                            if (c != ' ') inAnfuehrung = false;
                            const std::string eingabe = puffer;
                            puffer.clear();
                            host.eingabe(eingabe);
                        } else {
                            puffer += c;
                        }
                    }
                }
                break;
            }
            default:
                break;
        }
        zeichnen(dpy, w, gc, host, puffer);
    }
    log << "ENDE\n";
    log.flush();
    XFreeGC(dpy, gc);
    XDestroyWindow(dpy, w);
    XCloseDisplay(dpy);
    return 0;
}
