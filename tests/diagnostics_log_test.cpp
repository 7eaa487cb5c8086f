#include "tests/fixture.h"

#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <thread>
#include <vector>

#include <unistd.h>

namespace
{

const QString logPath = QStringLiteral("/tmp/kvo.log");
const QString reportProgram = QStringLiteral("/opt/checkThreads");

/// Keeps what the machine has at a fixed path out of the test's way.
class SetAside
{
public:
    explicit SetAside(const QString &path) : m_path(path), m_kept(path + QStringLiteral(".aside"))
    {
        QFile::rename(m_path, m_kept);
    }
    ~SetAside()
    {
        QFile::remove(m_path);
        QFile::rename(m_kept, m_path);
    }

private:
    const QString m_path;
    const QString m_kept;
};

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class LogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_log = std::make_unique<SetAside>(logPath); }
    void cleanup()
    {
        m_log.reset();
        enableDebug = 0;
    }

    void switchesStartOff()
    {
        QCOMPARE(enableDebug, 0);
        QCOMPARE(enableWorkaround, 0);
    }

    void messageIsAppendedExactly_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("line");
        const auto kept = [](const char *name, const QByteArray &message) {
            QTest::newRow(name) << message << message + '\n';
        };
        const auto cut = [](const char *name, const QByteArray &message, qsizetype length) {
            QTest::newRow(name) << message << message.first(length) + '\n';
        };
        kept("letters", "plain letters");
        kept("empty", "");
        kept("an option of echo", "-n -e");
        kept("quotes", "a \"quoted\" 'word'");
        kept("shell",
             "$HOME $(touch /tmp/kvo.ran) `touch /tmp/kvo.ran` \"; touch /tmp/kvo.ran; \"");
        kept("escapes", "\\n \\c \\\\ \\0101 \\");
        kept("format", "100 %s %n %%");
        kept("lines", "one\ntwo\r\n\tthree");
        kept("no UTF-8", "\xff\xfe\x80 \xc3");
        kept("176 bytes", QByteArray(176, 'x'));
        cut("177 bytes", QByteArray(177, 'x'), 176);
        cut("far too long", QByteArray(100000, 'x'), 176);
        cut("no UTF-8, too long", QByteArray(200, '\x80'), 176);
        const QByteArrayList characters = {"\xc3\xa4", "\xe2\x82\xac", "\xf0\x9f\x8e\xac"};
        for (const QByteArray &character : characters) {
            const QByteArray size = QByteArray::number(character.size());
            cut("cut inside " + size + " bytes", QByteArray(175, 'x') + character + "yy", 175);
            kept("room for " + size + " bytes",
                 QByteArray(176 - character.size(), 'x') + character);
            cut("cut behind " + size + " bytes",
                QByteArray(176 - character.size(), 'x') + character + character, 176);
        }
    }

    void messageIsAppendedExactly()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, line);
        xprintf("before");
        xprintf(message.constData());
        xprintf(nullptr);
        xprocf(nullptr);
        QCOMPARE(contents(logPath), "before\n" + line);
        QVERIFY2(!QFile::exists(QStringLiteral("/tmp/kvo.ran")), "a message was executed");
    }

    void threadsNeitherLoseNorTearLines()
    {
        constexpr int threads = 10;
        constexpr int lines = 200;
        QByteArrayList expected;
        for (char name = '0'; name < '0' + threads; ++name) {
            for (int i = 0; i < lines; ++i)
                expected += QByteArray(150, name) + QByteArray::number(i);
        }
        std::vector<std::thread> writers;
        for (int i = 0; i < threads; ++i) {
            writers.emplace_back([&expected, i] {
                for (int j = 0; j < lines; ++j)
                    xprintf(expected.at(i * lines + j).constData());
            });
        }
        for (std::thread &writer : writers)
            writer.join();
        QByteArrayList written = contents(logPath).trimmed().split('\n');
        std::sort(written.begin(), written.end());
        std::sort(expected.begin(), expected.end());
        QCOMPARE(written, expected);
    }

    void reportFollowsItsMessage_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::addColumn<QByteArray>("report");
        QTest::addColumn<QByteArray>("trace");
        const QByteArray pid = QByteArray::number(getpid());
        QTest::newRow("reports") << QByteArray("#!/bin/sh\necho \"threads of $*\"\n")
                                 << "threads of " + pid + '\n'
                                 << QByteArray();
        QTest::newRow("fails") << QByteArray("#!/bin/sh\nexit 3\n") << QByteArray()
                               << QByteArray("xprocf failed: 768\n");
        QTest::newRow("missing") << QByteArray() << QByteArray()
                                 << QByteArray("xprocf failed: 32512\n");
    }

    void reportFollowsItsMessage()
    {
        QFETCH(QByteArray, program);
        QFETCH(QByteArray, report);
        QFETCH(QByteArray, trace);
        const SetAside installed(reportProgram);
        if (!program.isEmpty())
            install(program);
        Captured output(STDOUT_FILENO);
        xprocf("off");
        QCOMPARE(output.text(), QByteArray());
        enableDebug = 1;
        xprocf("on");
        QCOMPARE(output.text(), trace);
        QCOMPARE(contents(logPath), "off\n" + report + "on\n" + report);
    }

    void linkAtThePathOfTheLogIsNotFollowed()
    {
        const QTemporaryDir folder;
        const QString victim = folder.filePath(QStringLiteral("victim"));
        QVERIFY(QFile::link(victim, logPath));
        const SetAside installed(reportProgram);
        install("#!/bin/sh\necho report\n");
        Captured output(STDOUT_FILENO);
        enableDebug = 0x80;
        xprocf("message");
        QCOMPARE(output.text(),
                 "xprintf failed: " + QByteArray::number(ELOOP) + "\nxprocf failed: -1\n");
        QVERIFY2(!QFile::exists(victim), "the link was followed");
    }

private:
    static void install(const QByteArray &program)
    {
        QFile file(reportProgram);
        QVERIFY2(file.open(QIODevice::WriteOnly), "the test needs to write to /opt");
        file.write(program);
        QVERIFY(file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ReadOwner));
    }

    std::unique_ptr<SetAside> m_log;
};

PLAYER_TEST_MAIN(LogTest)
#include "diagnostics_log_test.moc"
