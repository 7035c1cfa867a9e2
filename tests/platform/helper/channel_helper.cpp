// A second process for the instance-channel tests. Modes:
//   second DIR NAME OP [ARG...] [-- OP [ARG...]]...
//       behaves as a forwarding launcher: its claim must fail, another
//       instance must be seen running, then each message is sent in order.
//       Exit 0 when all of that held, 2 when the claim succeeded, 3 when no
//       other instance was seen, 4 when a send failed.
//   serve DIR NAME COUNT
//       claims (exit 2 if it cannot), prints "claimed", then prints each of
//       COUNT received messages as "OP|ARG|ARG" and exits 0.
//   partial DIR NAME
//       connects, writes the start of a message and dies.
//   stall DIR NAME
//       connects, writes the start of a message and waits for stdin to close.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "platform/instance_wire.h"
#include "platform/posix/unix_instance_channel.h"

namespace {

int rawConnect(const std::string& path) {
    int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    std::strncpy(addr.sun_path, path.c_str(), sizeof addr.sun_path - 1);
    if (::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) return -1;
    return fd;
}

std::string halfMessage() {
    std::string frame = platform::wire::encode({"StartForm2", {"0010017", "Teil des Auftrags"}});
    return frame.substr(0, frame.size() / 2);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) return 64;
    std::string mode = argv[1];
    platform::UnixInstanceChannel channel(argv[2]);
    std::string name = argv[3];

    if (mode == "second") {
        if (channel.claim(name)) return 2;
        if (!channel.anotherInstanceRunning(name)) return 3;
        for (int i = 4; i < argc;) {
            platform::InstanceMessage m{argv[i++], {}};
            while (i < argc && std::string(argv[i]) != "--") m.arguments.push_back(argv[i++]);
            if (i < argc) ++i;  // the separator
            if (!channel.send(name, m)) return 4;
        }
        return 0;
    }
    if (mode == "serve" && argc >= 5) {
        if (!channel.claim(name)) return 2;
        std::printf("claimed\n");
        std::fflush(stdout);
        int want = std::atoi(argv[4]);
        for (int got = 0; got < want;) {
            for (const auto& m : channel.receive()) {
                std::string line = m.operation;
                for (const auto& a : m.arguments) line += "|" + a;
                std::printf("%s\n", line.c_str());
                std::fflush(stdout);
                ++got;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return 0;
    }
    if (mode == "partial" || mode == "stall") {
        int fd = rawConnect(channel.socketPath(name));
        if (fd < 0) return 5;
        std::string half = halfMessage();
        if (::write(fd, half.data(), half.size()) != static_cast<ssize_t>(half.size())) return 6;
        if (mode == "partial") _exit(0);
        std::printf("stalled\n");
        std::fflush(stdout);
        char c;
        while (::read(0, &c, 1) > 0) {
        }
        return 0;
    }
    return 64;
}
