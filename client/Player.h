#ifndef MEDIAPLAYER_PLAYER_H
#define MEDIAPLAYER_PLAYER_H

#include <MediaPlayer/ClientExport.h>

#include <QtCore/QObject>
#include <QtCore/QSize>
#include <QtCore/QUrl>
#include <QtCore/QVariantMap>

#include <memory>

struct MediaPlayerParams;

namespace MediaPlayer
{

class Place;
class PlayerPrivate;

/// Plays one medium at a time. It has no picture of its own: a PlayerWidget, or the QML type Video,
/// shows it.
///
/// Names, values and meanings are QMediaPlayer's where it has them; the rest is named as ours. All
/// of it belongs to the GUI thread, and nothing here waits: a call says what is wanted, and signals
/// tell what has come of it. Times are milliseconds. Nothing throws; what fails is told by error(),
/// errorString() and errorOccurred(), in words for a user.
///
/// A player may be deleted at any time, before or after whatever shows it, but before the
/// application object. Its media end with it.
class MEDIAPLAYER_CLIENT Player : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(qint64 duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(qint64 position READ position WRITE setPosition NOTIFY positionChanged)
    Q_PROPERTY(float bufferProgress READ bufferProgress NOTIFY bufferProgressChanged)
    Q_PROPERTY(bool hasAudio READ hasAudio NOTIFY hasAudioChanged)
    Q_PROPERTY(bool hasVideo READ hasVideo NOTIFY hasVideoChanged)
    Q_PROPERTY(bool seekable READ isSeekable NOTIFY seekableChanged)
    Q_PROPERTY(bool playing READ isPlaying NOTIFY playingChanged)
    Q_PROPERTY(int loops READ loops WRITE setLoops NOTIFY loopsChanged)
    Q_PROPERTY(PlaybackState playbackState READ playbackState NOTIFY playbackStateChanged)
    Q_PROPERTY(MediaStatus mediaStatus READ mediaStatus NOTIFY mediaStatusChanged)
    Q_PROPERTY(QVariantMap metaData READ metaData NOTIFY metaDataChanged)
    Q_PROPERTY(Error error READ error NOTIFY errorChanged)
    Q_PROPERTY(QString errorString READ errorString NOTIFY errorChanged)
    Q_PROPERTY(bool autoPlay READ autoPlay WRITE setAutoPlay NOTIFY autoPlayChanged)
    // Ours.
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(bool muted READ isMuted WRITE setMuted NOTIFY mutedChanged)
    Q_PROPERTY(QSize videoSize READ videoSize NOTIFY videoSizeChanged)

public:
    enum PlaybackState { StoppedState, PlayingState, PausedState };
    Q_ENUM(PlaybackState)

    enum MediaStatus {
        NoMedia,
        LoadingMedia, ///< being opened; a film without a place to be shown in stays so
        LoadedMedia,
        StalledMedia, ///< waits for data in mid-film, see bufferProgress()
        BufferingMedia, ///< waits for data before it begins
        BufferedMedia,
        EndOfMedia,
        InvalidMedia ///< cannot be played, see errorString()
    };
    Q_ENUM(MediaStatus)

    enum Error { NoError, ResourceError, FormatError, NetworkError, AccessDeniedError };
    Q_ENUM(Error)

    enum Loops { Infinite = -1, Once = 1 };
    Q_ENUM(Loops)

    /// What becomes of a playing medium when the place that shows it is hidden, or goes; see
    /// PlayerWidget and Video.
    enum WhenHidden {
        GoOn,
        Pause ///< until it is shown again
    };
    Q_ENUM(WhenHidden)

    explicit Player(QObject *parent = nullptr);
    ~Player() override;

    /// Any address: a file of any name, "qrc:", "http:" and whatever else GStreamer opens. One
    /// without a scheme names a file in the working folder. Setting the same one again does
    /// nothing, unless it failed: then it is tried anew. Empty: no media.
    QUrl source() const;
    void setSource(const QUrl &source);

    /// 0 while it is unknown, and for a live source.
    qint64 duration() const;

    /// The place that was asked for until the medium is there; at the end, the duration.
    qint64 position() const;

    /// Goes to the key frame before; but forward never to one before the present place while a
    /// later one can be found. Of several calls in a row the last one counts. Before the medium is
    /// loaded it is remembered, for one that is not seekable ignored.
    void setPosition(qint64 position);

    float bufferProgress() const; ///< 0 to 1; 1 when it waits for nothing
    bool hasAudio() const;
    bool hasVideo() const;
    bool isSeekable() const;
    bool isPlaying() const; ///< whether playbackState() is PlayingState

    /// How often the medium is played, 1 or more, or Infinite. Takes effect at the next end.
    int loops() const;
    void setLoops(int loops);

    /// What was asked for: PlayingState also while the medium is loaded or waits for data.
    PlaybackState playbackState() const;
    MediaStatus mediaStatus() const;

    /// Keys are QMediaMetaData's in lower camel case: title, author, albumTitle ... Empty while
    /// nothing is known.
    QVariantMap metaData() const;

    Error error() const;
    QString errorString() const;

    /// Whether a source that is set is played at once.
    bool autoPlay() const;
    void setAutoPlay(bool autoPlay);

    /// Linear, 0 to 10; 1 leaves the level as it is. Values outside are brought inside.
    double volume() const;
    void setVolume(double volume);
    bool isMuted() const;
    void setMuted(bool muted);

    /// Of the picture in square pixels; empty without a picture, and while it is unknown.
    QSize videoSize() const;

    /// The record that this player and the plug-in share, for tools that show it. Read what the
    /// plug-in writes by std::atomic_ref. Operands that the player itself does not use (transform,
    /// crop, opacity, aspect ratio) may be written, for sendCommand().
    MediaPlayerParams &record() const;

    /// Sends any command code, in turn with the player's own; commandAnswered() tells of it.
    /// Without a medium nothing is sent.
    void sendCommand(int command);

public Q_SLOTS:
    /// Plays as soon as it can; from the start when the end had been reached, and anew what had
    /// failed. Without a source it does nothing.
    void play();
    void pause();
    void stop(); ///< goes back to the start and stays there

Q_SIGNALS:
    void sourceChanged(const QUrl &media);
    void durationChanged(qint64 duration);
    void positionChanged(qint64 position);
    void bufferProgressChanged(float progress);
    void hasAudioChanged(bool available);
    void hasVideoChanged(bool available);
    void seekableChanged(bool seekable);
    void playingChanged(bool playing);
    void loopsChanged();
    void playbackStateChanged(MediaPlayer::Player::PlaybackState newState);
    void mediaStatusChanged(MediaPlayer::Player::MediaStatus status);
    void metaDataChanged();
    void errorChanged();
    void errorOccurred(MediaPlayer::Player::Error error, const QString &errorString);
    void autoPlayChanged(bool autoPlay);
    void volumeChanged(double volume);
    void mutedChanged(bool muted);
    void videoSizeChanged(QSize size);

    /// A command of the player's own or of sendCommand() was answered; for tools that show it.
    void commandAnswered(int command, bool done, bool error);

private:
    friend class Place;
    friend class PlayerPrivate;
    const std::unique_ptr<PlayerPrivate> d;
};

} // namespace MediaPlayer

#endif
