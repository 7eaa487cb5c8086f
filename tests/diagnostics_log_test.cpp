#include "tests/fixture.h"

#include <algorithm>
#include <thread>
#include <vector>

#include <unistd.h>

namespace
{

const QString logPath = QStringLiteral("/tmp/kvo.log");
const QString reportProgram = QStringLiteral("/opt/checkThreads");
const QString aside = QStringLiteral(".aside");

QByteArray logged()
{
    QFile log(logPath);
    return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
}

} // namespace

class LogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // What the machine has at the fixed paths is kept out of the way.
    void init()
    {
        for (const QString &path : {logPath, reportProgram})
            QFile::rename(path, path + aside);
    }

    void cleanup()
    {
        for (const QString &path : {logPath, reportProgram}) {
            QFile::remove(path);
            QFile::rename(path + aside, path);
        }
        enableDebug = 0;
    }

    void messagesAreAppendedExactly()
    {
        QByteArray expected;
        const auto append = [&expected](const QByteArray &message, qsizetype kept) {
            xprintf(message.constData());
            expected += message.first(kept) + '\n';
        };
        for (const QByteArray message :
             {"", "-n -e", "a \"quoted\" 'word'",
              "$HOME $(touch /tmp/kvo.ran) `touch /tmp/kvo.ran`", "\"; touch /tmp/kvo.ran; \"",
              "\\n \\c \\\\ \\0101 \\", "100 %s %n %%", "one\ntwo\r\n\tthree", "\xff\xfe\x80 \xc3"})
            append(message, message.size());
        append(QByteArray(100'000, 'x'), 176);
        append(QByteArray(200, '\x80'), 176); // no UTF-8
        for (const QByteArray character : {"x", "\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x8e\xac"}) {
            const QByteArray full = QByteArray(176 - character.size(), 'x') + character;
            append(full, 176);
            append(full + character, 176);
            append('x' + full + "yy", 177 - character.size());
        }
        xprintf(nullptr);
        xprocf(nullptr);
        QCOMPARE(logged().split('\n'), expected.split('\n'));
        QVERIFY2(!QFile::exists(QStringLiteral("/tmp/kvo.ran")), "a message was executed");
    }

    void threadsNeitherLoseNorTearLines()
    {
        QByteArrayList expected;
        for (int line = 10'000; line < 12'000; ++line)
            expected += QByteArray::number(line).repeated(35);
        std::vector<std::jthread> writers;
        for (int writer = 0; writer < 10; ++writer) {
            writers.emplace_back([&expected, writer] {
                for (int line = writer; line < expected.size(); line += 10)
                    xprintf(expected.at(line).constData());
            });
        }
        writers.clear();
        QByteArrayList written = logged().trimmed().split('\n');
        std::sort(written.begin(), written.end());
        QCOMPARE(written, expected);
    }

    void reportFollowsItsMessage()
    {
        Captured output(STDOUT_FILENO);
        xprocf("off");
        enableDebug = 0x80;
        xprocf("missing");
        QCOMPARE(output.text(), "xprocf failed: 32512\n");

        QFile program(reportProgram);
        QVERIFY2(program.open(QIODevice::WriteOnly), "the test needs to write to /opt");
        program.write("#!/bin/sh\necho \"threads of $*\"\n");
        program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        program.close();
        xprocf("installed");
        QCOMPARE(logged(),
                 "off\nmissing\ninstalled\nthreads of " + QByteArray::number(getpid()) + '\n');

        const QTemporaryDir folder;
        QFile::remove(logPath);
        QVERIFY(QFile::link(folder.filePath(QStringLiteral("other")), logPath));
        xprocf("through a link");
        QCOMPARE(output.text(), "xprocf failed: 32512\nxprintf failed: 40\nxprocf failed: -1\n");
        QCOMPARE(logged(), QByteArray()); // what the link leads to
    }
};

PLAYER_TEST_MAIN(LogTest)
#include "diagnostics_log_test.moc"
