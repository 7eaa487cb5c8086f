#include "diagnostics/MediaPlayerDiagnostics.h"
#include "diagnostics/Trace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr char logPath[] = MEDIAPLAYER_LOG;
constexpr char reportFormat[] = "/opt/checkThreads %d >> " MEDIAPLAYER_LOG;
constexpr std::size_t longestMessage = 176;

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// How much of the message is written. Bytes that are no UTF-8 are cut at the limit.
std::size_t writtenLength(const char *message)
{
    const std::size_t length = strnlen(message, longestMessage + 1);
    if (length <= longestMessage)
        return length;
    std::size_t start = longestMessage;
    while (start > longestMessage - 3 && continuesCharacter(message[start]))
        --start;
    const bool startsCharacter = (static_cast<unsigned char>(message[start]) & 0xC0U) == 0xC0U;
    return startsCharacter ? start : longestMessage;
}

enum class Link { None, Ours, Foreign };

Link linkThere()
{
    struct stat info;
    if (lstat(logPath, &info) != 0 || !S_ISLNK(info.st_mode))
        return Link::None;
    return info.st_uid == geteuid() ? Link::Ours : Link::Foreign;
}

/// A descriptor, or -1 with errno set. /tmp is everybody's: somebody else's link may lead to a file
/// of this user, and a FIFO would hold the caller for ever.
int openLog()
{
    const Link link = linkThere();
    if (link == Link::Foreign) {
        errno = ELOOP;
        return -1;
    }
    const int follow = link == Link::Ours ? 0 : O_NOFOLLOW; // it may have come since
    return open(logPath, O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | follow,
                0666);
}

bool canBeWritten()
{
    const int file = openLog();
    if (file >= 0)
        close(file);
    return file >= 0;
}

/// 0, or the number of the system error.
int append(const char *bytes, std::size_t size)
{
    const int file = openLog();
    if (file < 0)
        return errno;
    int error = 0;
    // The whole line normally goes in one call, which is what keeps lines of several threads apart.
    while (size > 0 && error == 0) {
        const ssize_t written = write(file, bytes, size);
        if (written >= 0) {
            bytes += written;
            size -= static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            error = errno;
        }
    }
    close(file);
    return error;
}

} // namespace

extern "C" {

void xprintf(const char *message)
{
    if (!message)
        return;
    std::array<char, longestMessage + 1> line;
    const std::size_t length = writtenLength(message);
    std::memcpy(line.data(), message, length);
    line[length] = '\n';
    if (const int error = append(line.data(), length + 1))
        traceFormat("xprintf failed: %d\n", error);
}

void xprocf(const char *message)
{
    if (!message)
        return;
    xprintf(message);
    std::array<char, 200> command;
    std::snprintf(command.data(), command.size(), reportFormat, static_cast<int>(getpid()));
    // The shell would wait at a FIFO, and follow anybody's link.
    const int status = canBeWritten() ? std::system(command.data()) : -1;
    if (status != 0)
        traceFormat("xprocf failed: %d\n", status);
}

// Hosts that look the functions up as C++ functions find them too.
[[gnu::alias("xprintf"), gnu::visibility("default")]] void
xprintfUnderItsCxxName(const char *message) asm("_Z7xprintfPKc");
[[gnu::alias("xprocf"), gnu::visibility("default")]] void
xprocfUnderItsCxxName(const char *message) asm("_Z6xprocfPKc");
}
