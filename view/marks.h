#ifndef MARKS_H
#define MARKS_H

#include <gst/gst.h>

#include <QtCore/QList>
#include <QtCore/QPointer>
#include <QtQuickWidgets/QQuickWidget>

#include <cstdint>

// What a view remembers beside its documented members, by what guards it.

/// Guarded by the view's `lock`: what must hold still while a message or an answer is written.
struct RunMarks {
    /// Goes up with every change down to READY or NULL, every switch and every seek, so that what
    /// was queried before is not published after.
    std::uint32_t generation = 0;

    /// Number of the first message that the present run could have sent. Ends and changes of state
    /// that are older belong to a run that is over.
    std::uint32_t firstOfRun = GST_SEQNUM_INVALID;

    /// A command is being carried out and has not reported: messages wait for the report.
    bool commandRunning = false;

    /// A change down to NULL has flushed an error off this pipeline's bus; the listener reports it.
    const GstElement *flushedErrorOf = nullptr;

    /// The picture cannot take frames yet: errors of a request that came too early are dropped.
    bool awaitsItem = false;
};

/// The GUI thread's own.
struct Life {
    bool deletionScheduled = false; ///< a registration of the record makes a new view
    bool pipelineReleased = false; ///< by unrefPipe(): there are no elements any more
    bool bound = false; ///< a control has registered a record at least once
    QPointer<const QObject> control; ///< the newest that did
    QList<QPointer<QQuickWidget>> widgetsLeftBehind; ///< deleted when no picture is in them
};

#endif
