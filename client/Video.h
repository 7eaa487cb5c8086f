#ifndef MEDIAPLAYER_VIDEO_H
#define MEDIAPLAYER_VIDEO_H

#include <MediaPlayer/Player.h>

#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

namespace MediaPlayer
{

class ItemPlace;

/// What the QML type Player inherits, for the tools that check QML.
struct PlayerInQml {
    Q_GADGET
    QML_FOREIGN(MediaPlayer::Player)
    QML_ANONYMOUS
};

/// The QML type Player: a Player whose source may be relative to the QML file.
class MEDIAPLAYER_CLIENT QmlPlayer : public MediaPlayer::Player // in full, for the tools
{
    Q_OBJECT
    QML_NAMED_ELEMENT(Player)
    Q_PROPERTY(QUrl source READ source WRITE setRelativeSource NOTIFY relativeSourceChanged)

public:
    explicit QmlPlayer(QObject *parent = nullptr);
    void setRelativeSource(const QUrl &source);

Q_SIGNALS:
    void relativeSourceChanged(); ///< sourceChanged(), in the class that moc wants it in
};

/// The QML type Video: an item that shows a player, one of its own, which ends with it, or the one
/// that `player` names. `Video { source: "film.mp4"; autoPlay: true }` plays.
///
/// Its properties, methods and signals are those of Qt's QML type Video. Those that are a player's
/// work on the one that is shown; with `player` set, set them there, since QML sets the properties
/// of an object in no order. What is not described here is described at Player. An item without a
/// size, or in no window, plays sound all the same; a film starts when it is first seen. It takes
/// no input events. GUI thread.
class MEDIAPLAYER_CLIENT Video : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(MediaPlayer::Player *player READ player WRITE setPlayer RESET resetPlayer NOTIFY
                   playerChanged)

    // The player's.
    Q_PROPERTY(QUrl source READ source WRITE setSource NOTIFY sourceChanged)
    Q_PROPERTY(qint64 duration READ duration NOTIFY durationChanged)
    Q_PROPERTY(qint64 position READ position WRITE setPosition NOTIFY positionChanged)
    Q_PROPERTY(float bufferProgress READ bufferProgress NOTIFY bufferProgressChanged)
    Q_PROPERTY(bool hasAudio READ hasAudio NOTIFY hasAudioChanged)
    Q_PROPERTY(bool hasVideo READ hasVideo NOTIFY hasVideoChanged)
    Q_PROPERTY(bool seekable READ isSeekable NOTIFY seekableChanged)
    Q_PROPERTY(int loops READ loops WRITE setLoops NOTIFY loopsChanged)
    Q_PROPERTY(MediaPlayer::Player::PlaybackState playbackState READ playbackState NOTIFY
                   playbackStateChanged)
    Q_PROPERTY(
        MediaPlayer::Player::MediaStatus mediaStatus READ mediaStatus NOTIFY mediaStatusChanged)
    Q_PROPERTY(QVariantMap metaData READ metaData NOTIFY metaDataChanged)
    Q_PROPERTY(MediaPlayer::Player::Error error READ error NOTIFY errorChanged)
    Q_PROPERTY(QString errorString READ errorString NOTIFY errorChanged)
    Q_PROPERTY(bool autoPlay READ autoPlay WRITE setAutoPlay NOTIFY autoPlayChanged)
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(bool muted READ isMuted WRITE setMuted NOTIFY mutedChanged)

    // The picture's.
    Q_PROPERTY(FillMode fillMode READ fillMode WRITE setFillMode NOTIFY fillModeChanged)
    Q_PROPERTY(int orientation READ orientation WRITE setOrientation NOTIFY orientationChanged)
    Q_PROPERTY(bool mirrored READ isMirrored WRITE setMirrored NOTIFY mirroredChanged)
    Q_PROPERTY(MediaPlayer::Player::WhenHidden whenHidden READ whenHidden WRITE setWhenHidden NOTIFY
                   whenHiddenChanged)
    Q_PROPERTY(
        QList<int> cropMargins READ cropMargins WRITE setCropMargins NOTIFY cropMarginsChanged)

public:
    enum FillMode {
        Stretch = Qt::IgnoreAspectRatio,
        PreserveAspectFit = Qt::KeepAspectRatio,
        PreserveAspectCrop = Qt::KeepAspectRatioByExpanding
    };
    Q_ENUM(FillMode)

    explicit Video(QQuickItem *parent = nullptr);

    /// A player that was given goes on without a picture, or in the next item that shows it.
    ~Video() override;

    /// Never null: without one that was given the item makes its own. Of several items that have
    /// one player, the one shows it that got it last; when that goes, the one before. The player
    /// stays the caller's. Null, or the end of the player that was given: the item's own again.
    Player *player() const;
    void setPlayer(Player *player);
    void resetPlayer() { setPlayer(nullptr); }

    QUrl source() const;
    void setSource(const QUrl &source); ///< may be relative to the QML file
    qint64 duration() const;
    qint64 position() const;
    void setPosition(qint64 position);
    float bufferProgress() const;
    bool hasAudio() const;
    bool hasVideo() const;
    bool isSeekable() const;
    int loops() const;
    void setLoops(int loops);
    Player::PlaybackState playbackState() const;
    Player::MediaStatus mediaStatus() const;
    QVariantMap metaData() const;
    Player::Error error() const;
    QString errorString() const;
    bool autoPlay() const;
    void setAutoPlay(bool autoPlay);
    double volume() const;
    void setVolume(double volume);
    bool isMuted() const;
    void setMuted(bool muted);

    FillMode fillMode() const; ///< at first PreserveAspectFit
    void setFillMode(FillMode mode);

    /// Degrees clockwise, a multiple of 90; any other number is ignored with a warning.
    int orientation() const;
    void setOrientation(int orientation);

    bool isMirrored() const; ///< left and right change places, as seen
    void setMirrored(bool mirrored);

    /// What becomes of the player when this item is hidden or goes: at first Player.GoOn.
    Player::WhenHidden whenHidden() const;
    void setWhenHidden(Player::WhenHidden whenHidden);

    /// Left, top, right, bottom: pixels of the item by which the picture is pushed past each edge;
    /// negative ones leave a border. A list of another length is ignored with a warning.
    QList<int> cropMargins() const;
    void setCropMargins(const QList<int> &margins);

public Q_SLOTS:
    void play();
    void pause();
    void stop();
    void seek(int offset); ///< milliseconds from the start

Q_SIGNALS:
    void playerChanged();
    void sourceChanged();
    void durationChanged();
    void positionChanged();
    void bufferProgressChanged();
    void hasAudioChanged();
    void hasVideoChanged();
    void seekableChanged();
    void loopsChanged();
    void playbackStateChanged();
    void mediaStatusChanged();
    void metaDataChanged();
    void errorChanged();
    void errorOccurred(MediaPlayer::Player::Error error, const QString &errorString);
    void autoPlayChanged();
    void volumeChanged();
    void mutedChanged();
    void whenHiddenChanged();
    void fillModeChanged();
    void orientationChanged();
    void mirroredChanged();
    void cropMarginsChanged();
    void playing(); ///< playbackState has become PlayingState; so with the next two
    void paused();
    void stopped();

protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void componentComplete() override;

private:
    friend class ItemPlace;
    void follow(Player *player);

    const std::unique_ptr<ItemPlace> d;
};

} // namespace MediaPlayer

#endif
