#ifndef SUBJECT_H
#define SUBJECT_H

#include <QtCore/QString>

#include <memory>

class QQuickItem;

/// Something that shows media files in an item of the bench's window. GUI thread.
class Subject
{
public:
    virtual ~Subject() = default;

    /// Makes the file current and shows its first frame, paused. May return before that.
    virtual void open(const QString &uri) = 0;

    virtual void play() = 0;
    virtual void pause() = 0;
};

/// The pipeline that the plug-in builds, in the same scene, driven by nothing but these calls.
std::unique_ptr<Subject> makeBarePipeline(QQuickItem *place);

/// The client library's QML type, as an application uses it.
std::unique_ptr<Subject> makeClient(QQuickItem *place, const QString &library);

/// QMediaPlayer with a VideoOutput; QT_MEDIA_BACKEND chooses the backend.
std::unique_ptr<Subject> makeQtMultimedia(QQuickItem *place);

#endif
