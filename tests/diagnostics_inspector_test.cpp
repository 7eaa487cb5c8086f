#include "tests/fixture.h"

#include <QtCore/QRegularExpression>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <memory>

namespace
{

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

class InspectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersNullAndEmptyRequests()
    {
        const QStringList invalid = {QStringLiteral("invalid QMLDebug request")};
        Holder item("item");
        for (const int level : {0, 2, 31, 32}) {
            QCOMPARE(inspect(nullptr, level), invalid);
            QCOMPARE(inspect(&item, level & ~29), QStringList());
        }
        QCOMPARE(inspect(&item, QMLLvlIsQObject), QStringList(QStringLiteral("QObject:  true")));
    }

    void writesEveryProperty()
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

    void followsBothItemsInOrder()
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

    void readsRealFlickables_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("Flickable") << QByteArray("Flickable");
        QTest::newRow("ListView") << QByteArray("ListView");
    }

    void readsRealFlickables()
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
};

PLAYER_TEST_MAIN(InspectorTest)
#include "diagnostics_inspector_test.moc"
