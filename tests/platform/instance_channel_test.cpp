// The instance channel between two channels of this process (the claim is a
// lock on an open file, which excludes a second claim of the same process as
// of another). The hand-over between real processes and the take-over after
// a crashed first one are tests/app's.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "instance_kanal.h"
#include "platform/instance_wire.h"
#include "platform/posix/unix_instance_channel.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

class InstanceChannelTest : public ::testing::Test {
  protected:
    // Short: a socket path must stay below 108 bytes.
    const std::string dir = "/tmp/tsr-" + std::to_string(getpid());
    void SetUp() override { fs::create_directories(dir); }
    void TearDown() override { fs::remove_all(dir); }

    // A connection that writes bytes as a broken or foreign sender does;
    // with `ende` it then hangs up.
    int roh(const UnixInstanceChannel& holder, const std::string& bytes, bool ende) {
        int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un addr{};
        addr.sun_family = AF_UNIX;
        const std::string path = holder.socketPath("Tessara9.0");
        std::copy(path.begin(), path.end(), addr.sun_path);
        EXPECT_EQ(connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
        EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        if (ende) shutdown(fd, SHUT_WR);
        return fd;
    }
    // Polls the holder until it closes the connection without an answer.
    static void verworfen(UnixInstanceChannel& holder, int fd) {
        std::vector<InstanceMessage> got;
        bool zu = false;
        for (int i = 0; i < 1000 && !zu; ++i) {
            for (auto& m : holder.receive()) got.push_back(m);
            pollfd p{fd, POLLIN, 0};
            zu = poll(&p, 1, 5) > 0;
        }
        char c = 0;
        EXPECT_TRUE(zu && read(fd, &c, 1) == 0) << "the holder kept the connection or answered";
        EXPECT_TRUE(got.empty());
        close(fd);
    }
};

TEST_F(InstanceChannelTest, ALaterStartHandsItsRequestsOverInOrder) {
    UnixInstanceChannel first(dir), later(dir);
    ASSERT_TRUE(first.claim("Tessara9.0"));
    EXPECT_FALSE(first.anotherInstanceRunning("Tessara9.0"));
    EXPECT_FALSE(later.claim("Tessara9.0"));
    EXPECT_TRUE(later.anotherInstanceRunning("Tessara9.0"));
    EXPECT_FALSE(later.anotherInstanceRunning("EinAndererName"));
    EXPECT_EQ(sendeWaehrendAbholen(
                  first, later, "Tessara9.0",
                  {{"StartForm2", {"0010017", "Blöcke; mit Blank", ""}}, {"LBlkEinfuegen", {}}}),
              (std::vector<std::string>{"StartForm2|0010017|Blöcke; mit Blank|", "LBlkEinfuegen"}));
    // Gone: the name is free again and nobody answers.
    first.release();
    EXPECT_FALSE(later.anotherInstanceRunning("Tessara9.0"));
    later.setSendTimeoutMs(300);
    EXPECT_FALSE(later.send("Tessara9.0", {"LBlkEinfuegen", {}}));
    EXPECT_TRUE(later.claim("Tessara9.0"));
}

TEST_F(InstanceChannelTest, BrokenAndForeignSendersAreDroppedWithoutWedgingTheHolder) {
    UnixInstanceChannel first(dir), later(dir);
    first.setClientGraceMs(200);
    ASSERT_TRUE(first.claim("Tessara9.0"));
    const std::string frame = wire::encode({"StartForm2", {"0010017", "Teil des Auftrags"}});
    for (const std::string& junk :
         {frame.substr(0, frame.size() / 2), std::string("GET / HTTP/1.0\r\n\r\n"),
          std::string("TSR1\xff\xff\xff\x7f", 8), frame.substr(0, 8) + std::string(40, '\xee')}) {
        SCOPED_TRACE(junk.size());
        verworfen(first, roh(first, junk, true));
    }
    // One that stalls half-way holds up neither a later sender nor the
    // holder, and is dropped after the grace time.
    const int stalled = roh(first, frame.substr(0, frame.size() / 2), false);
    EXPECT_EQ(sendeWaehrendAbholen(first, later, "Tessara9.0", {{"StartForm2", {"x", "y"}}}),
              std::vector<std::string>{"StartForm2|x|y"});
    verworfen(first, stalled);
}

TEST_F(InstanceChannelTest, AHolderThatDoesNotAnswerMakesTheSendFailAndDropsTheRequest) {
    UnixInstanceChannel holder(dir), sender(dir);
    ASSERT_TRUE(holder.claim("Tessara9.0"));
    sender.setSendTimeoutMs(200);
    // The holder is busy and does not poll: the sender gives up.
    EXPECT_FALSE(sender.send("Tessara9.0", {"StartForm2", {"a", "b"}}));
    // What it had written is not carried out later.
    EXPECT_TRUE(holder.receive().empty());
    EXPECT_TRUE(holder.receive().empty());
}

TEST_F(InstanceChannelTest, PlaceIsTheRuntimeDirectoryElseAPrivateOneInTmp) {
    const char* old = std::getenv("XDG_RUNTIME_DIR");
    std::string saved = old ? old : "";
    const std::string runtime = dir;
    setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    EXPECT_EQ(UnixInstanceChannel::defaultDirectory(), runtime);
    EXPECT_EQ(UnixInstanceChannel(runtime).socketPath("Tessara9.0"),
              runtime + "/tessara-Tessara9.0.sock");
    // Odd characters never leave the directory; long names are shortened.
    std::string odd = UnixInstanceChannel(runtime).socketPath("../x y/" + std::string(200, 'z'));
    EXPECT_EQ(odd.rfind(runtime + "/tessara-.._x_y_", 0), 0u) << odd;
    EXPECT_LT(odd.size(), runtime.size() + 80);
    unsetenv("XDG_RUNTIME_DIR");
    const std::string tmp = UnixInstanceChannel::defaultDirectory();
    EXPECT_EQ(tmp, "/tmp/tessara-" + std::to_string(getuid()));
    struct stat st;
    ASSERT_EQ(lstat(tmp.c_str(), &st), 0);
    EXPECT_TRUE(S_ISDIR(st.st_mode));
    EXPECT_EQ(st.st_mode & 0777, 0700u);
    if (old) setenv("XDG_RUNTIME_DIR", saved.c_str(), 1);
}

TEST(InstanceWire, RoundTripsAndRejectsDamage) {
    InstanceMessage m{"StartForm2", {"0010017", std::string("a\0b", 3), ""}};
    std::string frame = wire::encode(m);
    auto len = wire::payloadLength(frame);
    ASSERT_TRUE(len);
    EXPECT_EQ(*len + wire::kHeaderSize, frame.size());
    std::string payload = frame.substr(wire::kHeaderSize);
    auto back = wire::decodePayload(payload);
    ASSERT_TRUE(back);
    EXPECT_EQ(zeilen({*back}), zeilen({m}));
    for (std::size_t cut = 0; cut < payload.size(); ++cut)
        EXPECT_FALSE(wire::decodePayload(payload.substr(0, cut))) << cut;
    EXPECT_FALSE(wire::decodePayload(payload + "x"));
    EXPECT_FALSE(wire::payloadLength("XXXX\x04\0\0\0"));
}

}  // namespace
}  // namespace platform
