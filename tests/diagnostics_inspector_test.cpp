#include "tests/fixture.h"

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

namespace
{

QStringList inspect(QQuickItem *item, int level)
{
    static QStringList lines;
    lines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &line) { lines += line; });
    QMLDebug(item, static_cast<QMLErrorLvl>(level));
    qInstallMessageHandler(previous);
    return lines;
}

/// The parts of the output, each as its kind and the object's name.
QStringList parts(const QStringList &lines)
{
    static const QRegularExpression first(QStringLiteral("^(\\w+ of Object|QObject): "));
    static const QRegularExpression header(
        QStringLiteral(" of Object:  \\w+   QVariant\\(QString, \"(\\w*)\"\\)$"));
    return lines.filter(first).replaceInStrings(header, QStringLiteral(" \\1"));
}

/// All there is about an item, with what is written about those that it holds.
QStringList whole(const QString &name, const QStringList &held = {})
{
    return QStringList(QStringLiteral("Properties ") + name) + held
        + QStringList {QStringLiteral("ObjectInfo ") + name, QStringLiteral("ObjectTree ") + name,
                       QStringLiteral("QObject:  true")};
}

} // namespace

class InspectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesEveryProperty()
    {
        QQuickItem item;
        item.setObjectName(QStringLiteral("item"));
        const QStringList lines = inspect(&item, QMLLvlProperties | QMLLvlRecursive);
        QCOMPARE(lines.size(), item.metaObject()->propertyCount() + 1);
        QCOMPARE(lines.at(0),
                 QStringLiteral("Properties of Object:  QQuickItem   QVariant(QString, \"item\")"));
        QCOMPARE(lines.at(1),
                 QStringLiteral("property  0 :  objectName  =  QVariant(QString, \"item\")  "
                                "writeable:  true"));
        const int rect = item.metaObject()->indexOfProperty("childrenRect");
        QCOMPARE(lines.at(rect + 1),
                 QStringLiteral("property  %1 :  childrenRect  =  QVariant(QRectF, QRectF(0,0 "
                                "0x0))  writeable:  false")
                     .arg(rect));
        QCOMPARE(inspect(nullptr, 0), QStringList(QStringLiteral("invalid QMLDebug request")));
        QCOMPARE(inspect(&item, QMLLvlRecursive), QStringList());
    }

    void followsHeldItemsInOrder_data()
    {
        QTest::addColumn<QByteArray>("qml");
        QTest::addColumn<QStringList>("held");
        for (const char *type : {"Flickable", "ListView"})
            QTest::newRow(type) << QByteArray(type) + " { contentItem.objectName: 'inner'"
                                << whole(QStringLiteral("inner"));
        QTest::newRow("both, which lead back")
            << QByteArray("Item { id: outer; property QtObject flickableItem: Item {"
                          " objectName: 'flickable'; property Item contentItem: outer.contentItem }"
                          " property Item contentItem: Item {"
                          " objectName: 'content'; property Item flickableItem: outer }")
            << whole(QStringLiteral("content")) + whole(QStringLiteral("flickable"));
    }

    void followsHeldItemsInOrder()
    {
        QFETCH(QByteArray, qml);
        QFETCH(QStringList, held);
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQuick\n" + qml + "; objectName: 'outer' }", QUrl());
        const std::unique_ptr<QObject> object(component.create());
        const auto item = qobject_cast<QQuickItem *>(object.get());
        QVERIFY2(item, qPrintable(component.errorString()));
        const QStringList expected = whole(QStringLiteral("outer"), held);
        QCOMPARE(parts(inspect(item, 31)), expected);
        QCOMPARE(parts(inspect(item, 31)), expected); // nothing is remembered from before
    }
};

PLAYER_TEST_MAIN(InspectorTest)
#include "diagnostics_inspector_test.moc"
