#ifndef BASICWIDGET_H
#define BASICWIDGET_H

#include <QtCore/QObject>

/// The interface through which a host drives one native control.
///
/// A host gets a control from one of the factories in MediaPlayerFactories.h and calls it through
/// the virtual table only, so the order of the operations is part of the interface. All of them
/// are called on the GUI thread, none of them reports a failure, and each tolerates that a window,
/// item or player it needs is gone: that step is skipped.
class BasicWidget : public QObject
{
    Q_OBJECT

public:
    explicit BasicWidget(QObject *parent = nullptr) : QObject(parent) { }

    /// 1 shows the control and restores its picture into the host's item; any other number hides
    /// the control and parks the picture. The picture follows at the player's next poll (about
    /// 150 ms) and the record's `attached` tells when. Returns 1.
    virtual int SysNativeControlShow(int show) = 0;

    /// Deletes the control before it returns. Returns 1.
    virtual int SysNativeControlDestroy() = 0;

    /// Places a control in its parent widget. The four numbers are the corners of the rectangle in
    /// the parent's pixels, both inclusive: the width is right - left + 1. A Qt Quick host places
    /// its own item instead; the call does nothing there. Returns 1.
    virtual int SysNativeControlMove(int left, int top, int right, int bottom) = 0;

    /// The one key is "RegisterParameter", in exactly this spelling, with the address of a
    /// MediaPlayerParams as its value: makes the record's player, or takes over the one that it
    /// already has, and loads the record's fileName if that player has loaded nothing yet. Any
    /// other key and a null value do nothing. Returns 1.
    virtual int SysNativeControlSetSettings(char *key, void *value) = 0;

    /// Parks the picture at once, so that it outlives the host's item. In a Qt Quick host the
    /// control then deletes itself at the next turn of the event loop. Returns false.
    virtual bool saveObject() = 0;

private:
    // Two fields of the host's own definition of this class. The plug-in never touches them; they
    // keep what a derived class adds in its place.
    [[maybe_unused]] void *hostField0 = nullptr;
    [[maybe_unused]] void *hostField1 = nullptr;
};

#endif
