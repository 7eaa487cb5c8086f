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

constexpr char logPath[] = "/tmp/kvo.log";
constexpr char reportFormat[] = "/opt/checkThreads %d >> /tmp/kvo.log";
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

/// 0, or the number of the system error.
int append(const char *bytes, std::size_t size)
{
    // /tmp is everybody's: O_NOFOLLOW against a link to one of the user's own files, O_NONBLOCK
    // against a FIFO that would hold the caller for ever.
    const int file =
        open(logPath,
             O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
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

bool logIsLink()
{
    struct stat info;
    return lstat(logPath, &info) == 0 && S_ISLNK(info.st_mode);
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
    const int status = logIsLink() ? -1 : std::system(command.data());
    if (status != 0)
        traceFormat("xprocf failed: %d\n", status);
}

// Hosts that look the functions up as C++ functions find them too.
[[gnu::alias("xprintf"), gnu::visibility("default")]] void
xprintfUnderItsCxxName(const char *message) asm("_Z7xprintfPKc");
[[gnu::alias("xprocf"), gnu::visibility("default")]] void
xprocfUnderItsCxxName(const char *message) asm("_Z6xprocfPKc");
}
