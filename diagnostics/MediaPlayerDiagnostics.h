#ifndef MEDIAPLAYERDIAGNOSTICS_H
#define MEDIAPLAYERDIAGNOSTICS_H

// What the library exports for diagnosis. A host loads the library at run time and looks these up
// by name: the switches and the two log functions under their plain names, QMLDebug under its C++
// name, "_Z8QMLDebugP10QQuickItem11QMLErrorLvl". The declarations give the types to look them up
// with, as in decltype(&xprintf).

#define MEDIAPLAYER_EXPORT __attribute__((visibility("default")))

class QQuickItem;

extern "C" {

/// Non-zero: the library writes trace lines to standard output. 0 at load, never written by the
/// library, read afresh at every use, on any thread; a change takes effect at the next use.
MEDIAPLAYER_EXPORT extern unsigned char enableDebug;

/// Non-zero: a player survives its control in a widget host too, parking ignores the mark of the
/// rebind command, and registering a record again answers that command. Read like enableDebug.
MEDIAPLAYER_EXPORT extern unsigned char enableWorkaround;

/// Appends `message`, byte for byte, and a line feed to /tmp/kvo.log, which is made where it is
/// missing. Any thread; blocks until written; lines of several threads never mix. Of a longer
/// message the first 176 bytes are written, less an unfinished UTF-8 character at their end. Null
/// does nothing. A symbolic link at the log's path is followed if it belongs to the calling user,
/// and refused otherwise. A failure leaves the file as it is and is told only while tracing:
/// "xprintf failed: " and the number of the system error.
MEDIAPLAYER_EXPORT void xprintf(const char *message);

/// xprintf(message), then has the shell append what the program /opt/checkThreads prints about
/// this process. Blocks until the program has ended. Null does nothing. A failure of the program
/// is told only while tracing: "xprocf failed: " and the status that system() gave, or -1 where
/// the log cannot be written; the shell is then not asked.
MEDIAPLAYER_EXPORT void xprocf(const char *message);
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

/// Writes what is known about `item` to Qt's debug messages, one message a line, each item once
/// per call. Call it on the thread that owns the item. A null item is answered with "invalid
/// QMLDebug request".
MEDIAPLAYER_EXPORT void QMLDebug(QQuickItem *item, QMLErrorLvl level);

#endif
