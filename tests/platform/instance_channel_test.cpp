// The instance channel between real processes: the helper program is the
// second start of the program (or, reversed, the running one). The hand-over
// of a second start and the take-over after a crashed first one are
// tests/app's, with the real program on both ends.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/instance_wire.h"
#include "platform/posix/unix_instance_channel.h"

extern char** environ;

namespace platform {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// A child process with its stdin and stdout on pipes.
class Child {
  public:
    explicit Child(std::vector<std::string> args) {
        args.insert(args.begin(), PLATFORM_CHANNEL_HELPER);
        int in[2], out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) return;
        posix_spawn_file_actions_t fa;
        posix_spawn_file_actions_init(&fa);
        posix_spawn_file_actions_adddup2(&fa, in[0], 0);
        posix_spawn_file_actions_adddup2(&fa, out[1], 1);
        std::vector<char*> argv;
        for (auto& a : args) argv.push_back(a.data());
        argv.push_back(nullptr);
        if (posix_spawn(&pid_, argv[0], &fa, nullptr, argv.data(), environ) != 0) pid_ = -1;
        posix_spawn_file_actions_destroy(&fa);
        close(in[0]);
        close(out[1]);
        stdin_ = in[1];
        stdout_ = out[0];
    }
    ~Child() {
        if (stdin_ >= 0) close(stdin_);
        if (pid_ > 0 && !exited_) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        if (stdout_ >= 0) close(stdout_);
    }
    bool started() const { return pid_ > 0; }
    // One line of its output, without the line end; empty at its end.
    std::string readLine() {
        std::string line;
        char c;
        while (read(stdout_, &c, 1) == 1 && c != '\n') line += c;
        return line;
    }
    void closeStdin() {
        close(stdin_);
        stdin_ = -1;
    }
    // Exit code, while `poll` runs between checks; empty if it did not end
    // within a generous bound (a hang, not a slow machine).
    std::optional<int> wait(const std::function<void()>& poll = {}) {
        auto until = Clock::now() + std::chrono::seconds(30);
        while (Clock::now() < until) {
            int status = 0;
            pid_t r = waitpid(pid_, &status, WNOHANG);
            if (r == pid_) {
                exited_ = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            if (poll) poll();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return std::nullopt;
    }

  private:
    pid_t pid_ = -1;
    int stdin_ = -1, stdout_ = -1;
    bool exited_ = false;
};

class InstanceChannelTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::random_device rd;
        // Short: a socket path must stay below 108 bytes.
        dir_ = fs::path("/tmp") / ("tsr-" + std::to_string(rd() % 100000000));
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string dir() const { return dir_.string(); }
    fs::path dir_;
};

TEST_F(InstanceChannelTest, ThisProcessSendsToARunningOne) {
    Child running({"serve", dir(), "Tessara9.0", "2"});
    ASSERT_TRUE(running.started());
    ASSERT_EQ(running.readLine(), "claimed");
    UnixInstanceChannel me(dir());
    EXPECT_FALSE(me.claim("Tessara9.0"));
    EXPECT_TRUE(me.anotherInstanceRunning("Tessara9.0"));
    EXPECT_FALSE(me.anotherInstanceRunning("EinAndererName"));
    ASSERT_TRUE(me.send("Tessara9.0", {"StartForm2", {"a", ""}}));
    ASSERT_TRUE(me.send("Tessara9.0", {"LBlkEinfuegen", {}}));
    EXPECT_EQ(running.readLine(), "StartForm2|a|");
    EXPECT_EQ(running.readLine(), "LBlkEinfuegen");
    EXPECT_EQ(running.wait(), 0);
    // Gone: the name is free again and nobody answers.
    EXPECT_FALSE(me.anotherInstanceRunning("Tessara9.0"));
    me.setSendTimeoutMs(300);
    EXPECT_FALSE(me.send("Tessara9.0", {"LBlkEinfuegen", {}}));
    EXPECT_TRUE(me.claim("Tessara9.0"));
}

TEST_F(InstanceChannelTest, ASenderDyingMidRequestDoesNotWedgeTheReceiver) {
    UnixInstanceChannel first(dir());
    first.setClientGraceMs(200);
    ASSERT_TRUE(first.claim("Tessara9.0"));

    Child dying({"partial", dir(), "Tessara9.0"});
    ASSERT_EQ(dying.wait(), 0);
    Child stalled({"stall", dir(), "Tessara9.0"});
    ASSERT_EQ(stalled.readLine(), "stalled");

    // Neither half message is delivered, and receive keeps returning.
    EXPECT_TRUE(first.receive().empty());

    Child second({"second", dir(), "Tessara9.0", "StartForm2", "x", "y"});
    std::vector<InstanceMessage> got;
    auto code = second.wait([&] {
        for (auto& m : first.receive()) got.push_back(std::move(m));
    });
    ASSERT_EQ(code, 0);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].arguments, (std::vector<std::string>{"x", "y"}));
    stalled.closeStdin();
    EXPECT_EQ(stalled.wait(), 0);
    EXPECT_TRUE(first.receive().empty());
}

TEST_F(InstanceChannelTest, ForeignBytesAreDroppedAndAnswerNothing) {
    UnixInstanceChannel first(dir());
    ASSERT_TRUE(first.claim("Tessara9.0"));
    for (std::string junk :
         {std::string("GET / HTTP/1.0\r\n\r\n"), std::string("TSR1\xff\xff\xff\x7f", 8),
          platform::wire::encode({"StartForm2", {"a"}}).substr(0, 8) + std::string(40, '\xee')}) {
        int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        std::string path = first.socketPath("Tessara9.0");
        std::copy(path.begin(), path.end(), addr.sun_path);
        ASSERT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
        ASSERT_EQ(write(fd, junk.data(), junk.size()), static_cast<ssize_t>(junk.size()));
        shutdown(fd, SHUT_WR);
        std::vector<InstanceMessage> got;
        char c = 0;
        // The receiver closes the connection without an acknowledgement.
        for (int i = 0; i < 1000; ++i) {
            for (auto& m : first.receive()) got.push_back(m);
            pollfd p{fd, POLLIN, 0};
            if (poll(&p, 1, 5) > 0) break;
        }
        EXPECT_EQ(read(fd, &c, 1), 0);
        EXPECT_TRUE(got.empty());
        close(fd);
    }
}

TEST_F(InstanceChannelTest, AHolderThatDoesNotAnswerMakesTheSendFailAndDropsTheRequest) {
    UnixInstanceChannel holder(dir()), sender(dir());
    ASSERT_TRUE(holder.claim("Tessara9.0"));
    sender.setSendTimeoutMs(200);
    // The holder is busy and does not poll: the sender gives up.
    EXPECT_FALSE(sender.send("Tessara9.0", {"StartForm2", {"a", "b"}}));
    // What it had written is not carried out later.
    EXPECT_TRUE(holder.receive().empty());
    EXPECT_TRUE(holder.receive().empty());
}

TEST(UnixInstanceChannelPlace, RuntimeDirectoryElseAPrivateOneInTmp) {
    const char* old = std::getenv("XDG_RUNTIME_DIR");
    std::string saved = old ? old : "";
    fs::path runtime = fs::temp_directory_path() / ("tsr-rt-" + std::to_string(getpid()));
    fs::create_directories(runtime);
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    EXPECT_EQ(UnixInstanceChannel::defaultDirectory(), runtime.string());
    EXPECT_EQ(UnixInstanceChannel(runtime.string()).socketPath("Tessara9.0"),
              runtime.string() + "/tessara-Tessara9.0.sock");
    // Odd characters never leave the directory; long names are shortened.
    std::string odd =
        UnixInstanceChannel(runtime.string()).socketPath("../x y/" + std::string(200, 'z'));
    EXPECT_EQ(odd.rfind(runtime.string() + "/tessara-.._x_y_", 0), 0u) << odd;
    EXPECT_LT(odd.size(), runtime.string().size() + 80);
    unsetenv("XDG_RUNTIME_DIR");
    std::string dir = UnixInstanceChannel::defaultDirectory();
    EXPECT_EQ(dir, "/tmp/tessara-" + std::to_string(getuid()));
    struct stat st;
    ASSERT_EQ(lstat(dir.c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_EQ(st.st_mode & 0777, 0700u);
    if (old) setenv("XDG_RUNTIME_DIR", saved.c_str(), 1);
    fs::remove_all(runtime);
}

TEST(InstanceWire, RoundTripsAndRejectsDamage) {
    InstanceMessage m{"StartForm2", {"0010017", std::string("a\0b", 3), ""}};
    std::string frame = wire::encode(m);
    auto len = wire::payloadLength(frame);
    ASSERT_TRUE(len);
    EXPECT_EQ(*len + wire::kHeaderSize, frame.size());
    auto back = wire::decodePayload(std::string_view(frame).substr(wire::kHeaderSize));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->operation, m.operation);
    EXPECT_EQ(back->arguments, m.arguments);
    std::string payload = frame.substr(wire::kHeaderSize);
    for (std::size_t cut = 0; cut < payload.size(); ++cut)
        EXPECT_FALSE(wire::decodePayload(payload.substr(0, cut))) << cut;
    EXPECT_FALSE(wire::decodePayload(payload + "x"));
    EXPECT_FALSE(wire::payloadLength("XXXX\x04\0\0\0"));
}

}  // namespace
}  // namespace platform
