#pragma once
// The bytes of one instance message on the local channel, shared by the
// Unix-domain socket and the named pipe: "TSR1", the payload length (32-bit
// little endian), then the payload: the number of strings, and each string
// as its length and bytes, the operation first. The receiver answers one
// acknowledgement byte once the whole message is queued.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/instance_channel.h"

namespace platform::wire {

constexpr char kAck = 0x06;
constexpr std::size_t kHeaderSize = 8;
// A request is a handful of short strings; anything larger is not ours.
constexpr std::uint32_t kMaxPayload = 1u << 20;

std::string encode(const InstanceMessage& message);

// Length of the payload announced by a header; empty when the header is not
// one of ours or announces too much.
std::optional<std::uint32_t> payloadLength(std::string_view header);

std::optional<InstanceMessage> decodePayload(std::string_view payload);

}  // namespace platform::wire
