// rotalix-latencia: an office network on the loopback. Listens on a port and forwards every
// connection to the database server, holding each chunk of bytes for the given delay in each
// direction, so that each statement pays the round trip of a real network (0.5 ms each way
// is the 1 ms of a busy office switch). Used by scripts/bench-pg.sh where the container
// cannot delay packets itself.
//
//     rotalix-latencia --ouvir 6543 --destino 127.0.0.1:5432 --atraso-ms 0.5

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Chunk {
    Clock::time_point due;
    std::string bytes;
};

// One direction of a connection: what was read from `from`, waiting to go to `to`.
struct Direction {
    int from = -1;
    int to = -1;
    std::deque<Chunk> waiting;
    bool closed = false; // `from` ended: close `to` once the waiting bytes went
};

struct Link {
    Direction up, down;
    bool dead = false;
};

int connectTo(const sockaddr_in& address) {
    const int s = socket(AF_INET, SOCK_STREAM, 0);
    if (s < 0) return -1;
    if (connect(s, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(s);
        return -1;
    }
    return s;
}

void noDelay(int s) {
    int one = 1;
    setsockopt(s, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
}

bool writeAll(int s, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = write(s, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += size_t(n);
    }
    return true;
}

[[noreturn]] void usage() {
    std::fprintf(stderr, "uso: rotalix-latencia --ouvir PORTA --destino HOST:PORTA "
                         "[--atraso-ms MS]\n");
    std::exit(2);
}

} // namespace

int main(int argc, char** argv) {
    int listenPort = 0;
    std::string target;
    double delayMs = 0.5;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string key = argv[i];
        if (key == "--ouvir")
            listenPort = std::atoi(argv[i + 1]);
        else if (key == "--destino")
            target = argv[i + 1];
        else if (key == "--atraso-ms")
            delayMs = std::atof(argv[i + 1]);
        else
            usage();
    }
    const auto colon = target.rfind(':');
    if (listenPort <= 0 || colon == std::string::npos) usage();
    sockaddr_in destination{};
    destination.sin_family = AF_INET;
    destination.sin_port = htons(uint16_t(std::atoi(target.c_str() + colon + 1)));
    if (inet_pton(AF_INET, target.substr(0, colon).c_str(), &destination.sin_addr) != 1) usage();
    const auto delay = std::chrono::nanoseconds(std::int64_t(delayMs * 1e6));
    signal(SIGPIPE, SIG_IGN);

    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    int one = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in here{};
    here.sin_family = AF_INET;
    here.sin_port = htons(uint16_t(listenPort));
    here.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr*>(&here), sizeof here) != 0 ||
        listen(listener, 64) != 0) {
        std::perror("rotalix-latencia");
        return 1;
    }
    std::printf("rotalix-latencia: 127.0.0.1:%d -> %s, %.3f ms em cada sentido\n", listenPort,
                target.c_str(), delayMs);
    std::fflush(stdout);

    std::vector<Link*> links;
    std::vector<char> buffer(256 * 1024);
    for (;;) {
        // Wait for bytes, or until the first waiting chunk is due.
        std::vector<pollfd> fds{{listener, POLLIN, 0}};
        std::vector<Direction*> readers;
        Clock::time_point next = Clock::time_point::max();
        for (Link* l : links)
            for (Direction* d : {&l->up, &l->down}) {
                if (!d->closed) {
                    fds.push_back({d->from, POLLIN, 0});
                    readers.push_back(d);
                }
                if (!d->waiting.empty() && d->waiting.front().due < next)
                    next = d->waiting.front().due;
            }
        timespec wait{};
        timespec* timeout = nullptr;
        if (next != Clock::time_point::max()) {
            const auto left =
                std::max(std::chrono::nanoseconds(0),
                         std::chrono::duration_cast<std::chrono::nanoseconds>(next - Clock::now()));
            wait.tv_sec = time_t(left.count() / 1000000000);
            wait.tv_nsec = long(left.count() % 1000000000);
            timeout = &wait;
        }
        if (ppoll(fds.data(), fds.size(), timeout, nullptr) < 0 && errno != EINTR) {
            std::perror("rotalix-latencia");
            return 1;
        }
        const Clock::time_point now = Clock::now();
        if (fds[0].revents & POLLIN) {
            const int client = accept(listener, nullptr, nullptr);
            if (client >= 0) {
                const int server = connectTo(destination);
                if (server < 0) {
                    close(client);
                } else {
                    noDelay(client);
                    noDelay(server);
                    auto* l = new Link;
                    l->up = {client, server, {}, false};
                    l->down = {server, client, {}, false};
                    links.push_back(l);
                }
            }
        }
        for (size_t i = 1; i < fds.size(); ++i) {
            if (!(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
            Direction* d = readers[i - 1];
            const ssize_t n = read(d->from, buffer.data(), buffer.size());
            if (n > 0)
                d->waiting.push_back({now + delay, std::string(buffer.data(), size_t(n))});
            else if (n == 0 || errno != EINTR)
                d->closed = true;
        }
        // Hand over what is due; a connection ends when both sides ended or a write failed.
        for (Link* l : links) {
            for (Direction* d : {&l->up, &l->down}) {
                while (!d->waiting.empty() && d->waiting.front().due <= Clock::now()) {
                    if (!writeAll(d->to, d->waiting.front().bytes)) l->dead = true;
                    d->waiting.pop_front();
                }
                if (d->closed && d->waiting.empty()) shutdown(d->to, SHUT_WR);
            }
            if ((l->up.closed && l->down.closed && l->up.waiting.empty() &&
                 l->down.waiting.empty()) ||
                l->dead) {
                close(l->up.from);
                close(l->down.from);
                l->dead = true;
            }
        }
        std::erase_if(links, [](Link* l) {
            if (!l->dead) return false;
            delete l;
            return true;
        });
    }
}
