#include "tests/fixture.h"

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

namespace
{

QByteArray inspect(QQuickItem *item, int level)
{
    static QByteArray text;
    text.clear();
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &line) {
            text += line.toUtf8() + '\n';
        });
    QMLDebug(item, static_cast<QMLErrorLvl>(level));
    qInstallMessageHandler(previous);
    return text;
}

/// The order of the parts, with the names of their objects, without properties and Qt's own dumps.
QString parts(const QByteArray &text)
{
    static const QRegularExpression line(
        QStringLiteral("(?m)^(?:(\\w+) of Object:  \\w+   QVariant\\(QString, "
                       "\"(\\w*)\"\\)|(QObject):  true|.*)\n"));
    return QString::fromUtf8(text).replace(line, QStringLiteral("\\1 \\2\\3 ")).simplified();
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
        const QByteArray text = inspect(&item, QMLLvlProperties | QMLLvlRecursive);
        QCOMPARE(text.count('\n'), item.metaObject()->propertyCount() + 1);
        for (const char *line :
             {"Properties of Object:  QQuickItem   QVariant(QString, \"item\")\nproperty  0 :  "
              "objectName  =  QVariant(QString, \"item\")  writeable:  true\nproperty  1 :  ",
              "  childrenRect  =  QVariant(QRectF, QRectF(0,0 0x0))  writeable:  false\n"})
            QVERIFY2(text.contains(line), text);
        QCOMPARE(inspect(nullptr, 0), "invalid QMLDebug request\n");
        QCOMPARE(inspect(&item, QMLLvlRecursive), "");
    }

    // One of the items is of a type of Qt's that holds another, and two lead back.
    void followsHeldItemsInOrder()
    {
        QQmlEngine engine;
        QQmlComponent component(&engine);
        const char *const scene = R"(import QtQuick
Item { id: outer; objectName: 'outer'
    property QtObject flickableItem: Item {
        objectName: 'flickable'; property Item contentItem: outer.contentItem }
    property Item contentItem: ListView {
        objectName: 'content'; contentItem.objectName: 'inner'; property Item flickableItem: outer }
})";
        component.setData(scene, QUrl());
        const std::unique_ptr<QQuickItem> item(qobject_cast<QQuickItem *>(component.create()));
        QVERIFY2(item, qPrintable(component.errorString()));
        const QString expected =
            QStringLiteral("Properties outer Properties content Properties inner "
                           "ObjectInfo inner ObjectTree inner QObject ObjectInfo content "
                           "ObjectTree content QObject "
                           "Properties flickable ObjectInfo flickable ObjectTree flickable QObject "
                           "ObjectInfo outer ObjectTree outer QObject");
        QCOMPARE(parts(inspect(item.get(), 31)), expected);
        QCOMPARE(parts(inspect(item.get(), 31)), expected); // nothing is remembered from before
    }
};

PLAYER_TEST_MAIN(InspectorTest)
#include "diagnostics_inspector_test.moc"
