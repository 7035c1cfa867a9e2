#include "platform/instance_wire.h"

namespace platform::wire {
namespace {

void putU32(std::string& out, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

std::uint32_t getU32(std::string_view s, std::size_t at) {
    std::uint32_t v = 0;
    for (int i = 0; i < 4; ++i)
        v |= std::uint32_t(static_cast<unsigned char>(s[at + i])) << (8 * i);
    return v;
}

}  // namespace

std::string encode(const InstanceMessage& message) {
    std::string payload;
    putU32(payload, static_cast<std::uint32_t>(message.arguments.size() + 1));
    putU32(payload, static_cast<std::uint32_t>(message.operation.size()));
    payload += message.operation;
    for (const auto& a : message.arguments) {
        putU32(payload, static_cast<std::uint32_t>(a.size()));
        payload += a;
    }
    std::string frame = "TSR1";
    putU32(frame, static_cast<std::uint32_t>(payload.size()));
    return frame + payload;
}

std::optional<std::uint32_t> payloadLength(std::string_view header) {
    if (header.size() < kHeaderSize || header.substr(0, 4) != "TSR1") return std::nullopt;
    std::uint32_t n = getU32(header, 4);
    if (n < 4 || n > kMaxPayload) return std::nullopt;
    return n;
}

std::optional<InstanceMessage> decodePayload(std::string_view payload) {
    if (payload.size() < 4) return std::nullopt;
    std::uint32_t count = getU32(payload, 0);
    std::size_t pos = 4;
    InstanceMessage m;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (payload.size() - pos < 4) return std::nullopt;
        std::uint32_t len = getU32(payload, pos);
        pos += 4;
        if (payload.size() - pos < len) return std::nullopt;
        std::string s(payload.substr(pos, len));
        pos += len;
        if (i == 0)
            m.operation = std::move(s);
        else
            m.arguments.push_back(std::move(s));
    }
    if (count == 0 || pos != payload.size()) return std::nullopt;
    return m;
}

}  // namespace platform::wire
