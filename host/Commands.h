#ifndef COMMANDS_H
#define COMMANDS_H

#include <QtGui/QAction>

#include <functional>

class Session;

/// Something that a user can do: by keys, in the menu, and some of it by a button.
class Command : public QAction
{
    Q_OBJECT
    Q_PROPERTY(QString drawing READ drawing NOTIFY changed)
    Q_PROPERTY(QStringList keys READ keys CONSTANT)
    Q_PROPERTY(QString label READ label NOTIFY changed)
    Q_PROPERTY(QString hint READ hint CONSTANT)
    Q_PROPERTY(bool listed MEMBER listed CONSTANT)

public:
    using QAction::QAction;

    QString drawing() const { return theDrawing; } ///< a name for look::image()
    void setDrawing(const QString &name); ///< and the icon
    QStringList keys() const; ///< as QML's shortcuts want them
    QString hint() const; ///< the first key, as it is written on the keyboard
    QString label() const; ///< the text without mnemonics, with the hint

    bool listed = true; ///< whether it is in the menu

private:
    QString theDrawing;
};

/// Everything that can be done in a host, with the same names, keys and drawings in both.
class Commands : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<QObject *> all READ all CONSTANT)

public:
    explicit Commands(Session &session);

    /// In the order of the menu; null stands for a line between two.
    const QList<QObject *> &all() const { return list; }

    /// By a name such as "play"; must exist.
    Q_INVOKABLE Command *named(const QString &name) const;

Q_SIGNALS:
    // What only an interface can do.
    void filesWanted();
    void folderWanted();
    void addressWanted();
    void quitWanted();

private:
    Command *add(const QString &name, const QString &text, const QList<QKeySequence> &keys,
                 const std::function<void()> &run, const QString &drawing = {});
    void addLine() { list.append(nullptr); }
    void addOpening();
    void addPlaying();
    void addShowing();
    void followSession();

    Session &session;
    QList<QObject *> list;
};

#endif
