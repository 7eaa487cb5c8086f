#ifndef MEDIAPLAYER_PLAYERPRIVATE_H
#define MEDIAPLAYER_PLAYERPRIVATE_H

#include "MediaAddress.h"
#include "Place.h"
#include "RecordLink.h"
#include "Seek.h"

#include <MediaPlayer/BasicWidget.h>

#include <QtCore/QPointer>
#include <QtCore/QQueue>

class QQuickWindow;

namespace MediaPlayer
{

/// The inside of a Player: what is wanted, what the plug-in has been brought to, and what is shown
/// of both. Whenever something changes, advance() sends the one command that comes next, so what
/// is superseded is never sent. GUI thread.
class PlayerPrivate : public QObject
{
public:
    explicit PlayerPrivate(Player *player);
    ~PlayerPrivate() override;

    static PlayerPrivate *of(Player *player) { return player->d.get(); }

    enum class Phase {
        Empty, ///< no source
        Resolving, ///< the source is made an address
        Opening, ///< the plug-in is to take the address
        Prerolling, ///< it has taken it
        Ready, ///< it can play and seek
        Failed
    };

    /// What the properties show. Signals come of the difference to what was shown before.
    struct Shown {
        Player::PlaybackState playbackState = Player::StoppedState;
        Player::MediaStatus mediaStatus = Player::NoMedia;
        qint64 position = 0;
        qint64 duration = 0;
        float bufferProgress = 1;
        bool hasAudio = false;
        bool hasVideo = false;
        bool seekable = false;
        QVariantMap metaData;
        QSize videoSize;
        Player::Error error = Player::NoError;
        QString errorString;
    };

    // Loading, in playerLoading.cpp.
    void setSource(const QUrl &source);

    // What the application asks for, in playerCommands.cpp.
    void setIntent(Player::PlaybackState intent);
    void setPosition(qint64 position);
    void changeSetting(int command); ///< the operands are in the record
    void sendRaw(int command);

    // Places, in playerPlaces.cpp.
    void addPlace(Place *place);
    void removePlace(Place *place);
    void placesChanged();

    Player *const q;
    Shown shown;
    QUrl source;
    bool autoPlay = false;
    int loops = Player::Once;
    RecordLink link;

private:
    // playerLoading.cpp
    void beginLoading();
    void resolve();
    void openAgain();
    void accepted();
    void fail(const Failure &failure);
    void explain();
    void noticeFailure();
    void noticePreroll();

    // playerCommands.cpp
    void advance();
    std::optional<int> nextCommand();
    std::optional<int> nextOfMedium();
    int playState(int state);
    int wantedState() const;
    void answered(int command, bool done);

    // playerPublished.cpp
    void look(std::optional<int> answeredCommand, bool done);
    void noticePlace();
    void noticeArrival();
    void noticeEnd();
    void noticeUndonePlay();
    void end();
    bool isOpen() const { return m_phase == Phase::Prerolling || m_phase == Phase::Ready; }
    void show(); ///< last in whatever calls it: a receiver may delete the player
    Shown assemble() const;
    Player::MediaStatus status() const;

    // playerPlaces.cpp
    void makeView();
    bool enter(Place *place);
    void park();
    void noticeHidden();
    void noticePicture();

    // The source.
    MediaAddress m_address;
    MediaAddress::Resolved m_resolved;
    Phase m_phase = Phase::Empty;
    bool m_loadScheduled = false; ///< resolve() will be called
    bool m_toLoad = false; ///< m_resolved is to be given to the plug-in
    bool m_toSilence = false; ///< the medium before is neither to be heard nor seen
    bool m_reloads = false; ///< the stop command that is on its way loads
    QByteArray m_sent; ///< the address of the load command that is on its way
    QByteArray m_loaded; ///< the address that the plug-in has

    // What went wrong.
    Failure m_failure;
    bool m_failureToTell = false;
    bool m_errorSeen = false;
    bool m_explaining = false;
    int m_patience = 0; ///< looks that something has been waited for

    // What is wanted, and how far it has come.
    Player::PlaybackState m_intent = Player::StoppedState;
    bool m_intentGiven = false; ///< since the source was set: autoPlay is none
    Seek m_seek;
    bool m_toStop = false;
    QList<int> m_settings; ///< commands to send, with the operands that are in the record then
    QQueue<int> m_raw;
    int m_sentState = MediaPlayerStatePaused; ///< what the medium was brought to last
    int m_undoneLooks = 0; ///< that found it paused although it was told to play
    int m_undoneLeft = 0; ///< times that it is told again

    // What has been seen.
    Published m_seen;
    qint64 m_place = 0; ///< where the medium is
    int m_arriving = 0; ///< looks since a seek was answered whose place is not known yet
    int m_fallenLooks = 0; ///< that found it further back without a reason
    bool m_hasPlayed = false;
    int m_timesPlayed = 0;
    int m_endsSeen = 0;
    bool m_endPending = false; ///< it goes back to its start
    bool m_atEnd = false;

    // Where it is shown.
    QList<Place *> m_places;
    Place *m_current = nullptr;
    QPointer<BasicWidget> m_control;
    std::unique_ptr<QQuickWindow> m_viewWindow; ///< never shown
    bool m_wasPlaced = false;
    Player::WhenHidden m_whenHidden = Player::GoOn; ///< as the last place said
    bool m_hidden = false;
    bool m_pausedByHiding = false;
};

} // namespace MediaPlayer

#endif
