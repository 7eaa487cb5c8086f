#include "tests/fixture.h"

#include <thread>
#include <vector>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace
{

QByteArray logged()
{
    QFile log(QStringLiteral(MEDIAPLAYER_LOG));
    return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
}

} // namespace

class LogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The machine may have something at the fixed paths, so each test has empty folders there that
    // nobody else sees.
    void init()
    {
        QCOMPARE(unshare(CLONE_NEWNS), 0);
        QCOMPARE(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
        for (const char *folder : {"/tmp", "/opt"})
            QCOMPARE(mount("log_test", folder, "tmpfs", 0, nullptr), 0);
    }

    void messagesAreAppendedExactly()
    {
        QByteArray expected;
        const auto append = [&expected](const QByteArray &message, qsizetype kept) {
            xprintf(message.constData());
            expected += message.first(kept) + '\n';
        };
        for (const QByteArray message :
             {"", "-n -e", "a \"quoted\" 'word'", "$HOME $(echo x) `echo x`", "\"; echo x; \"",
              "\\n \\c \\\\ \\0101 \\", "100 %s %n %%", "one\ntwo\r\n\tthree", "\xff\xfe\x80 \xc3"})
            append(message, message.size());
        append(QByteArray(100'000, 'x'), 176);
        append(QByteArray(200, '\x80'), 176); // no UTF-8
        for (const QByteArray character : {"x", "\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x8e\xac"}) {
            const QByteArray full = QByteArray(176 - character.size(), 'x') + character;
            append(full + character, 176);
            append('x' + full + "yy", 177 - character.size());
        }
        xprintf(nullptr);
        xprocf(nullptr);
        QCOMPARE(logged().split('\n'), expected.split('\n'));
    }

    void threadsNeitherLoseNorTearLines()
    {
        QByteArrayList expected;
        std::vector<std::jthread> writers;
        for (char writer = 'a'; writer <= 'j'; ++writer) {
            const QByteArrayList lines(200, QByteArray(175, writer));
            expected += lines;
            writers.emplace_back([lines] {
                for (const QByteArray &line : lines)
                    xprintf(line.constData());
            });
        }
        writers.clear();
        QByteArrayList written = logged().trimmed().split('\n');
        std::sort(written.begin(), written.end());
        QCOMPARE(written, expected);
    }

    // Also through a link of the caller's own, but not past one that somebody else has put there.
    void reportFollowsItsMessage()
    {
        QByteArray output;
        {
            Captured captured(STDOUT_FILENO); // also what a comparison would say
            xprocf("off");
            enableDebug = 0x80;
            xprocf("missing");
            std::system("ln -s /bin/echo /opt/checkThreads");
            xprocf("installed");
            std::system("mv " MEDIAPLAYER_LOG " /tmp/other; ln -s other " MEDIAPLAYER_LOG);
            xprocf("linked");
            std::system("chown -h 1:1 " MEDIAPLAYER_LOG);
            xprocf("somebody else's");
            output = captured.text();
        }
        std::system("mv /tmp/other " MEDIAPLAYER_LOG);
        const QByteArray number = QByteArray::number(getpid()) + '\n';
        QCOMPARE(logged(), "off\nmissing\ninstalled\n" + number + "linked\n" + number);
        QCOMPARE(output, "xprocf failed: 32512\nxprintf failed: 40\nxprocf failed: -1\n");
    }
};

PLAYER_TEST_MAIN(LogTest)
#include "diagnostics_log_test.moc"
