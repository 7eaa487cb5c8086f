#include "tests/fixture.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

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

/// Holds others under both names that the inspector follows, one of them as a plain QObject.
class Holder : public QQuickItem
{
    Q_OBJECT
    Q_PROPERTY(QQuickItem *contentItem MEMBER m_contentItem)
    Q_PROPERTY(QObject *flickableItem MEMBER m_flickableItem)

public:
    explicit Holder(const char *name) { setObjectName(QLatin1String(name)); }

    QQuickItem *m_contentItem = nullptr;
    QObject *m_flickableItem = nullptr;
};

QStringList inspected;

QStringList inspect(QQuickItem *item, int level)
{
    inspected.clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext &context, const QString &message) {
            inspected += message;
            if (type != QtDebugMsg || qstrcmp(context.category, "default") != 0)
                inspected += QStringLiteral("not a plain debug message");
        });
    QMLDebug(item, static_cast<QMLErrorLvl>(level));
    qInstallMessageHandler(previous);
    return inspected;
}

/// The blocks of the output, each as its kind and the object's name.
QStringList blocks(const QStringList &lines)
{
    static const QRegularExpression header(
        QStringLiteral("^(\\w+) of Object:  \\w+   QVariant\\(QString, \"(\\w*)\"\\)$"));
    QStringList found;
    for (const QString &line : lines) {
        if (const auto match = header.match(line); match.hasMatch())
            found += match.captured(1) + QLatin1Char(' ') + match.captured(2);
        else if (line.startsWith(QLatin1String("QObject: ")))
            found += line;
    }
    return found;
}

} // namespace

class DiagnosticsTest : public QObject
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

    void inspectorAnswersNullAndEmptyRequests()
    {
        const QStringList invalid = {QStringLiteral("invalid QMLDebug request")};
        Holder item("item");
        for (const int level : {0, 2, 31, 32}) {
            QCOMPARE(inspect(nullptr, level), invalid);
            QCOMPARE(inspect(&item, level & ~29), QStringList());
        }
        QCOMPARE(inspect(&item, QMLLvlIsQObject), QStringList(QStringLiteral("QObject:  true")));
    }

    void inspectorWritesEveryProperty()
    {
        Holder item("item");
        const QStringList lines = inspect(&item, QMLLvlProperties);
        const QMetaObject *type = item.metaObject();
        QCOMPARE(lines.size(), type->propertyCount() + 1);
        QCOMPARE(lines.at(0),
                 QStringLiteral("Properties of Object:  Holder   QVariant(QString, \"item\")"));
        QCOMPARE(lines.at(1),
                 QStringLiteral("property  0 :  objectName  =  QVariant(QString, \"item\")  "
                                "writeable:  true"));
        const int index = type->indexOfProperty("implicitWidth");
        QCOMPARE(lines.at(index + 1),
                 QStringLiteral("property  %1 :  implicitWidth  =  QVariant(double, 0)  "
                                "writeable:  true")
                     .arg(index));
        const int rect = type->indexOfProperty("childrenRect");
        QCOMPARE(lines.at(rect + 1),
                 QStringLiteral("property  %1 :  childrenRect  =  QVariant(QRectF, QRectF(0,0 "
                                "0x0))  writeable:  false")
                     .arg(rect));
        QCOMPARE(inspect(&item, QMLLvlProperties | QMLLvlRecursive), lines);
    }

    void inspectorFollowsBothItemsInOrder()
    {
        Holder outer("outer");
        Holder content("content");
        Holder flickable("flickable");
        outer.m_contentItem = &content;
        outer.m_flickableItem = &flickable;
        content.m_flickableItem = &outer; // both lead back
        flickable.m_contentItem = &content;
        QStringList expected;
        const auto finish = [&expected](const QString &name) {
            expected += {QStringLiteral("ObjectInfo ") + name, QStringLiteral("ObjectTree ") + name,
                         QStringLiteral("QObject:  true")};
        };
        expected += {QStringLiteral("Properties outer"), QStringLiteral("Properties content")};
        finish(QStringLiteral("content"));
        expected += QStringLiteral("Properties flickable");
        finish(QStringLiteral("flickable"));
        finish(QStringLiteral("outer"));
        QCOMPARE(blocks(inspect(&outer, 31)), expected);
        QCOMPARE(blocks(inspect(&outer, 31)), expected); // nothing is remembered from before
    }

    void inspectorReadsRealFlickables_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("Flickable") << QByteArray("Flickable");
        QTest::newRow("ListView") << QByteArray("ListView");
    }

    void inspectorReadsRealFlickables()
    {
        QFETCH(QByteArray, type);
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQuick\n" + type
                              + " { objectName: 'outer'; contentItem.objectName: 'inner' }",
                          QUrl());
        const std::unique_ptr<QObject> object(component.create());
        const auto item = qobject_cast<QQuickItem *>(object.get());
        QVERIFY2(item, qPrintable(component.errorString()));
        const QStringList lines = inspect(item, QMLLvlProperties | QMLLvlRecursive);
        QCOMPARE(
            blocks(lines),
            QStringList({QStringLiteral("Properties outer"), QStringLiteral("Properties inner")}));
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

PLAYER_TEST_MAIN(DiagnosticsTest)
#include "diagnostics_test.moc"
