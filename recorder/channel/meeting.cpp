#include "recorder/channel/meeting.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace kestrail {
namespace {

/// Whole messages, and an end of them when the other side is gone.
constexpr int kKind = SOCK_SEQPACKET | SOCK_CLOEXEC;
constexpr int kWaiting = 64;
constexpr timeval kPatience = {5, 0};

/// A socket on which `meet`, bind or connect, was done with the folder's; -1 where that fails.
template <typename Meet>
int SocketIn(const char* folder, int more, Meet meet) {
    const int end = socket(AF_UNIX, kKind | more, 0);
    // By the folder's descriptor: the address has no room for long paths.
    const int place = open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "/proc/self/fd/%d/%s", place,
                  kSocketName);
    const bool met = end >= 0 && place >= 0 &&
                     meet(end, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (place >= 0) close(place);
    if (met || end < 0) return end;
    close(end);
    return -1;
}

/// One message that may bring a descriptor with it.
struct SMessage {
    SRingMemory memory;
    iovec piece = {&memory, sizeof memory};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr header = {};

    SMessage() {
        header.msg_iov = &piece;
        header.msg_iovlen = 1;
        header.msg_control = control;
        header.msg_controllen = sizeof control;
    }
};

}  // namespace

int ListenIn(const char* folder) {
    const int listener = SocketIn(folder, SOCK_NONBLOCK, bind);
    if (listener < 0 || listen(listener, kWaiting) == 0) return listener;
    close(listener);
    return -1;
}

int NextComer(int listener, pid_t& process) {
    const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (connection < 0) return -1;
    ucred peer{};
    socklen_t size = sizeof peer;
    getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size);
    process = peer.pid;
    return connection;
}

void HandOut(int connection, const SRingMemory& memory) {
    SMessage message;
    message.memory = memory;
    if (memory.descriptor < 0) {
        message.header.msg_controllen = 0;
    } else {
        cmsghdr* const head = CMSG_FIRSTHDR(&message.header);
        head->cmsg_level = SOL_SOCKET;
        head->cmsg_type = SCM_RIGHTS;
        head->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(head), &memory.descriptor, sizeof(int));
    }
    sendmsg(connection, &message.header, MSG_NOSIGNAL);
}

bool TakeRing(const char* folder, CRingMapping& ring) {
    const int connection = SocketIn(folder, 0, connect);
    if (connection < 0) return false;
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
    SMessage message;
    ssize_t got = 0;
    do {
        got = recvmsg(connection, &message.header, MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    close(connection);
    if (got != ssize_t{sizeof message.memory}) return false;
    const cmsghdr* const head = CMSG_FIRSTHDR(&message.header);
    message.memory.descriptor = -1;
    if (head != nullptr && head->cmsg_type == SCM_RIGHTS) {
        std::memcpy(&message.memory.descriptor, CMSG_DATA(head), sizeof(int));
    }
    const bool mapped = ring.Map(message.memory);
    if (message.memory.descriptor >= 0) close(message.memory.descriptor);
    return mapped;
}

}  // namespace kestrail
