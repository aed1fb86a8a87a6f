#include "svnconnectionbreaker.h"

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstring>
#include <filesystem>
#include <optional>

namespace hbrc::host {

namespace {

constexpr const char* kScheme = "svn://";
constexpr const char* kDefaultPort = "3690";

struct Endpoint
{
    std::string host;
    std::string port;
};

std::optional<Endpoint> EndpointOf(const std::string& url)
{
    if (url.rfind(kScheme, 0) != 0)
        return std::nullopt;
    std::string authority = url.substr(std::strlen(kScheme));
    authority = authority.substr(0, authority.find('/'));
    if (const auto at = authority.rfind('@'); at != std::string::npos)
        authority.erase(0, at + 1);
    Endpoint endpoint{authority, kDefaultPort};
    const auto closing = authority.rfind(']');
    const auto colon = authority.rfind(':');
    if (colon != std::string::npos && (closing == std::string::npos || colon > closing)) {
        endpoint.host = authority.substr(0, colon);
        endpoint.port = authority.substr(colon + 1);
    }
    if (endpoint.host.size() > 1 && endpoint.host.front() == '[')
        endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);
    return endpoint;
}

bool SameAddress(const sockaddr_storage& peer, const sockaddr* candidate)
{
    if (peer.ss_family != candidate->sa_family)
        return false;
    if (peer.ss_family == AF_INET) {
        const auto& a = reinterpret_cast<const sockaddr_in&>(peer);
        const auto& b = *reinterpret_cast<const sockaddr_in*>(candidate);
        return a.sin_port == b.sin_port && a.sin_addr.s_addr == b.sin_addr.s_addr;
    }
    if (peer.ss_family == AF_INET6) {
        const auto& a = reinterpret_cast<const sockaddr_in6&>(peer);
        const auto& b = *reinterpret_cast<const sockaddr_in6*>(candidate);
        return a.sin6_port == b.sin6_port && std::memcmp(&a.sin6_addr, &b.sin6_addr, sizeof a.sin6_addr) == 0;
    }
    return false;
}

// True when the descriptor is a stream socket connected to one of addresses.
bool ConnectedTo(int descriptor, const addrinfo* addresses)
{
    int type = 0;
    socklen_t typeLength = sizeof type;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &typeLength) != 0 || type != SOCK_STREAM)
        return false;
    sockaddr_storage peer{};
    socklen_t peerLength = sizeof peer;
    if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peerLength) != 0)
        return false;
    for (const addrinfo* address = addresses; address; address = address->ai_next)
        if (SameAddress(peer, address->ai_addr))
            return true;
    return false;
}

}  // namespace

void BreakConnectionsTo(const std::string& url)
{
    const std::optional<Endpoint> endpoint = EndpointOf(url);
    if (!endpoint)
        return;
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* addresses = nullptr;
    if (::getaddrinfo(endpoint->host.c_str(), endpoint->port.c_str(), &hints, &addresses) != 0)
        return;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
        const std::string name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos)
            continue;
        const int descriptor = std::stoi(name);
        if (ConnectedTo(descriptor, addresses))
            ::shutdown(descriptor, SHUT_RDWR);
    }
    ::freeaddrinfo(addresses);
}

}  // namespace hbrc::host
