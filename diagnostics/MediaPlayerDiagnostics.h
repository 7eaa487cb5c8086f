#ifndef MEDIAPLAYERDIAGNOSTICS_H
#define MEDIAPLAYERDIAGNOSTICS_H

// What the library exports for diagnosis. A host that loads the library at run time looks the
// symbols up by name: the switches and the two log functions under their plain names, QMLDebug
// under its C++ name, "_Z8QMLDebugP10QQuickItem11QMLErrorLvl".

class QQuickItem;

extern "C" {

/// Non-zero: the library writes trace lines to standard output. 0 at load, never written by the
/// library, read afresh at every use, on any thread; a change takes effect at the next use.
extern unsigned char enableDebug;

/// Non-zero: a player survives its control in a widget host too, parking ignores the mark of the
/// rebind command, and registering a record again answers that command. Read like enableDebug.
extern unsigned char enableWorkaround;

/// Appends `message` and a line feed to /tmp/kvo.log. Any thread; blocks until written.
/// At most 176 bytes of the message are written, cut between two characters. Null does nothing.
void xprintf(const char *message);

/// The same, then appends what the program /opt/checkThreads reports on this process.
void xprocf(const char *message);
}

/// What QMLDebug writes; values are combined with |.
enum QMLErrorLvl : int {
    QMLLvlProperties = 1, ///< every property with its value and whether it can be written
    QMLLvlRecursive = 2, ///< with QMLLvlProperties: also the items in "contentItem" and
                         ///< "flickableItem"
    QMLLvlObjectInfo = 4, ///< QObject::dumpObjectInfo()
    QMLLvlObjectTree = 8, ///< QObject::dumpObjectTree()
    QMLLvlIsQObject = 16 ///< whether the item inherits "QObject"
};

constexpr QMLErrorLvl operator|(QMLErrorLvl a, QMLErrorLvl b)
{
    return static_cast<QMLErrorLvl>(static_cast<int>(a) | static_cast<int>(b));
}

/// Writes what is known about `item` to Qt's debug messages, one message a line. Call it on the
/// thread that owns the item. A null item is answered with "invalid QMLDebug request".
void QMLDebug(QQuickItem *item, QMLErrorLvl level);

#endif
