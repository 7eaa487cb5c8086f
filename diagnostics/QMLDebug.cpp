#include "diagnostics/MediaPlayerDiagnostics.h"

#include <QtCore/QDebug>
#include <QtCore/QMetaProperty>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtQuick/QQuickItem>

namespace
{

class Inspection
{
public:
    explicit Inspection(QMLErrorLvl level) : m_level(level) { }

    /// An item that was inspected before is left out, so that items which hold each other end.
    void inspect(QQuickItem *item)
    {
        if (m_inspected.contains(item))
            return;
        m_inspected.insert(item);
        if (asksFor(QMLLvlProperties))
            writeProperties(item);
        if (asksFor(QMLLvlObjectInfo)) {
            writeHeader("ObjectInfo of Object: ", item);
            item->dumpObjectInfo();
        }
        if (asksFor(QMLLvlObjectTree)) {
            writeHeader("ObjectTree of Object: ", item);
            item->dumpObjectTree();
        }
        if (asksFor(QMLLvlIsQObject))
            qDebug() << "QObject: " << item->inherits("QObject");
    }

private:
    bool asksFor(QMLErrorLvl part) const { return (m_level & part) != 0; }

    static void writeHeader(const char *title, const QQuickItem *item)
    {
        qDebug() << title << item->metaObject()->className() << " " << item->property("objectName");
    }

    void writeProperties(QQuickItem *item)
    {
        writeHeader("Properties of Object: ", item);
        // Reading a property may run QML code, which may delete what an earlier one held.
        QPointer<QQuickItem> contentItem;
        QPointer<QQuickItem> flickableItem;
        const QMetaObject *type = item->metaObject();
        for (int i = 0; i < type->propertyCount(); ++i) {
            const QMetaProperty property = type->property(i);
            const QVariant value = item->property(property.name());
            qDebug() << "property " << i << ": " << property.name() << " = " << value
                     << " writeable: " << property.isWritable();
            if (qstrcmp(property.name(), "contentItem") == 0)
                contentItem = value.value<QQuickItem *>();
            else if (qstrcmp(property.name(), "flickableItem") == 0)
                flickableItem = value.value<QQuickItem *>();
        }
        if (!asksFor(QMLLvlRecursive))
            return;
        if (contentItem)
            inspect(contentItem);
        if (flickableItem)
            inspect(flickableItem);
    }

    const QMLErrorLvl m_level;
    QSet<const QQuickItem *> m_inspected;
};

} // namespace

void QMLDebug(QQuickItem *item, QMLErrorLvl level)
{
    if (item)
        Inspection(level).inspect(item);
    else
        qDebug() << "invalid QMLDebug request";
}
