#include "ReelCore/Platform/CardHandover.h"
#include "ReelCore/Platform/SystemError.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ReelCore {

namespace {

/// A message with room for a descriptor beside its text.
struct Message {
    explicit Message(std::string content) : text(std::move(content)) {
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = beside.data();
        header.msg_controllen = beside.size();
    }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    std::string text;
    iovec part{text.data(), text.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> beside{};
    msghdr header{};
};

bool send(int socket, const HeldCard& card) {
    const Medium& medium = card.medium();
    Message message(fmt::format("{}\n{}\n{}\n", medium.device, medium.size, medium.sequence));
    const int descriptor = card.descriptor();
    cmsghdr* control = CMSG_FIRSTHDR(&message.header);
    control->cmsg_level = SOL_SOCKET;
    control->cmsg_type = SCM_RIGHTS;
    control->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(control), &descriptor, sizeof descriptor);
    return ::sendmsg(socket, &message.header, MSG_NOSIGNAL) >= 0;
}

Medium mediumIn(const std::string& text) {
    Medium medium;
    std::istringstream lines(text);
    for (std::string* part : {&medium.device, &medium.size, &medium.sequence}) {
        std::getline(lines, *part);
    }
    return medium;
}

}  // namespace

CardHandover::CardHandover(HeldCard card) {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throwSystemError();
    }
    descriptor_ = ends[1];
    const bool sent = send(ends[0], card);
    const int code = errno;
    ::close(ends[0]);
    if (sent) return;
    ::close(descriptor_);
    throw SystemError(code);
}

CardHandover::~CardHandover() {
    ::close(descriptor_);
}

std::optional<HeldCard> CardHandover::received() {
    constexpr std::size_t enough = 256;
    Message message(std::string(enough, '\0'));
    const ssize_t count = ::recvmsg(STDIN_FILENO, &message.header, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (count <= 0) return std::nullopt;
    const cmsghdr* control = CMSG_FIRSTHDR(&message.header);
    // A card was handed over, but not this one, which is all that could be looked at.
    if (!control || control->cmsg_type != SCM_RIGHTS) throw SystemError(EBADMSG);
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(control), sizeof descriptor);
    message.text.resize(static_cast<std::size_t>(count));
    return HeldCard(descriptor, mediumIn(message.text));
}

}  // namespace ReelCore
