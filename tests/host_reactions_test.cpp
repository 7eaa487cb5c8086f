#include "tests/interleaving.h"

// A host that acts in the middle of a call, and hosts whose controls and records overlap. It gives
// a record back as soon as `view` reads null, and what has been freed is overwritten; see
// CMakeLists.txt.

namespace
{

/// Runs a step of the host once, on a signal or before an event of an object.
class Reaction : public QObject
{
    Q_OBJECT

public:
    Reaction(Host &host, void (*step)(Host &)) : m_host(host), m_step(step) { }

    void awaitSignal(QObject *sender, const char *signal)
    {
        connect(sender, signal, this, SLOT(act()));
    }
    void awaitEvent(QObject *receiver, QEvent::Type type)
    {
        m_type = type;
        receiver->installEventFilter(this);
    }

    bool done = false;

public Q_SLOTS:
    void act()
    {
        if (!std::exchange(done, true))
            m_step(m_host);
    }

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == m_type)
            act();
        return false;
    }

    Host &m_host;
    void (*const m_step)(Host &);
    QEvent::Type m_type = QEvent::None;
};

using Step = void (*)(Host &);

void destroyControl(Host &host)
{
    host.destroyControl();
}

void loseWindow(Host &host)
{
    host.window.reset();
    host.giveBackRecord();
}

void show(Host &host)
{
    host.control->SysNativeControlShow(1);
}

void hide(Host &host)
{
    host.control->SysNativeControlShow(0);
}

void save(Host &host)
{
    host.control->saveObject();
}

void registerRecord(Host &host)
{
    host.registerRecord();
}

template <MediaPlayerCommand command>
void raise(Host &host)
{
    host.raise(command);
}

QObject *place(Host &host)
{
    return host.place();
}

QObject *frame(Host &host)
{
    return host.place()->parentItem();
}

QObject *videoItem(Host &host)
{
    return host.videoItem();
}

QObject *quickWidget(Host &host)
{
    return host.widget->findChild<QQuickWidget *>();
}

enum Begin { Created, Registered, Playing, Parked };
constexpr bool stays = true, goes = false;

const struct Case {
    const char *name;
    Host::Kind kind;
    Begin begin;
    Step call;
    QObject *(*subject)(Host &);
    const char *signal; ///< or null for `event`
    QEvent::Type event;
    Step react;
    bool view; ///< whether the player stays
} cases[] = {
    {"saved, control goes",
     Host::Quick,
     Playing,
     save,
     place,
     SIGNAL(childrenChanged()),
     {},
     destroyControl,
     stays},
    {"saved, control and view go",
     Host::Widget,
     Playing,
     save,
     place,
     SIGNAL(childrenChanged()),
     {},
     destroyControl,
     goes},
    {"shown, control goes", Host::Widget, Registered, show, quickWidget, nullptr, QEvent::Show,
     destroyControl, goes},
    {"hidden, control goes", Host::Widget, Playing, hide, quickWidget, nullptr, QEvent::Hide,
     destroyControl, goes},
    {"registered, control goes",
     Host::Quick,
     Created,
     registerRecord,
     place,
     SIGNAL(childrenChanged()),
     {},
     destroyControl,
     goes},
    {"registered, control goes, widget",
     Host::Widget,
     Created,
     registerRecord,
     place,
     SIGNAL(childrenChanged()),
     {},
     destroyControl,
     goes},
    {"restored, window goes",
     Host::Quick,
     Parked,
     show,
     frame,
     SIGNAL(xChanged()),
     {},
     loseWindow,
     goes},
    {"cropped, window goes",
     Host::Quick,
     Playing,
     raise<MediaPlayerCommandCrop>,
     videoItem,
     SIGNAL(widthChanged()),
     {},
     loseWindow,
     goes},
    {"faded, window goes",
     Host::Quick,
     Playing,
     raise<MediaPlayerCommandOpacity>,
     videoItem,
     SIGNAL(opacityChanged()),
     {},
     loseWindow,
     goes},
    {"turned, window goes",
     Host::Quick,
     Playing,
     raise<MediaPlayerCommandTransform>,
     videoItem,
     SIGNAL(angleChanged()),
     {},
     loseWindow,
     goes},
    {"scene ends, view goes",
     Host::Quick,
     Playing,
     [](Host &host) { delete host.item; },
     [](Host &host) -> QObject * { return host.view(); },
     SIGNAL(destruct()),
     {},
     [](Host &host) {
         delete host.view();
         host.giveBackRecord();
     },
     goes},
};

/// Runs it in a slot; what is deleted later in there goes when the slot has returned.
void inSlot(const std::function<void()> &slot)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        slot();
        loop.quit();
    });
    loop.exec();
}

} // namespace

class HostReactionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { enableWorkaround = 0; }

    void insideACall_data()
    {
        QTest::addColumn<Case>("row");
        for (const Case &row : cases)
            QTest::newRow(row.name) << row;
    }
    void insideACall()
    {
        QFETCH(Case, row);
        Host host(row.kind);
        Reaction reaction(host, row.react);
        if (row.begin == Playing || row.begin == Parked) {
            openAndPlay(host);
        } else {
            host.setFileName(media("tone.flac") + '\0');
            host.create();
            if (row.begin == Registered)
                host.registerRecord();
        }
        if (row.begin == Parked) {
            hideAndPark(host);
            host.place()->parentItem()->setX(9);
        }
        const QPointer<MediaPlayerView> view = host.view();
        host.record.cropRight = 9; // operands that change something
        host.record.opacity = 0.5;
        host.record.transformParam = 90;
        if (row.signal)
            reaction.awaitSignal(row.subject(host), row.signal);
        else
            reaction.awaitEvent(row.subject(host), row.event);
        row.call(host);
        AWAIT(reaction.done);
        AWAIT(bool(host.view()) == row.view);
        QCOMPARE(bool(view), row.view);
        AWAIT(!host.control);
        if (row.view == stays)
            QCOMPARE(host.run(MediaPlayerCommandVolume), complete);
        else
            QVERIFY(host.giveBackRecord());
    }

    // One that waits for its deletion while another has taken its place, in a nested event loop.
    void aReplacedViewForgetsItsRecord()
    {
        Host host(Host::Widget);
        openAndPlay(host);
        const QPointer<MediaPlayerView> replaced = host.view();
        inSlot([&] {
            host.destroyControl();
            host.create();
            host.registerRecord();
            QVERIFY(host.view() != replaced);
            QVERIFY(!replaced->pipeline); // it does not sound on either
            inSlot([&] {
                host.destroyControl();
                AWAIT(host.giveBackRecord());
                QVERIFY(replaced);
            });
        });
        AWAIT(!replaced);
    }

    void aCommandIsAnsweredThoughTheControlIsGone()
    {
        Host host(Host::Widget);
        openAndPlay(host);
        inSlot([&] {
            host.raise(MediaPlayerCommandVolume);
            QVERIFY(blockUntil([&] { return loadAcquire(host.view()->invokePending); }));
            host.destroyControl();
        });
        AWAIT(!host.view());
        QCOMPARE(int(host.record.execute), 0);
        QCOMPARE(int(host.record.done), 1);

        // It serves on for as long as its deletion waits.
        host.create();
        host.registerRecord();
        inSlot([&] {
            host.destroyControl();
            inSlot([&] { QCOMPARE(host.run(MediaPlayerCommandMute), complete); });
        });
    }

    void aControlOfTwoRecordsEndsTheViewThatAnnouncesIt()
    {
        Host host(Host::Quick), other(Host::Quick);
        openAndPlay(host);
        host.registerRecord(other.record);
        const QPointer<MediaPlayerView> older = host.view(), newer = other.view();
        QMetaObject::invokeMethod(older->videoObject, "destruct");
        AWAIT(!older && !host.control);
        QVERIFY(newer);
        QCOMPARE(other.load(media("tone.flac")), complete);
    }

    void aWidgetThatIsLeftBehindKeepsEveryPictureInIt()
    {
        enableWorkaround = 1;
        Host host(Host::Widget), other(Host::Widget);
        openAndPlay(host);
        host.registerRecord(other.record);
        host.destroyControl();
        const QPointer<MediaPlayerView> older = host.view(), newer = other.view();
        // The newer view moves on; the older one's picture has not left the widget.
        host.create();
        host.registerRecord(other.record);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(other.record.attached), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(older);
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QVERIFY(older && newer);
        AWAIT_EQUAL(host.widget->findChildren<QQuickWidget *>().size(), 1);
    }

    void theNewestControlKeepsThePlayer()
    {
        Host host(Host::Widget);
        openAndPlay(host);
        const QPointer<MediaPlayerView> view = host.view();
        const QPointer<BasicWidget> old = host.control;
        host.create();
        host.registerRecord();
        old->SysNativeControlShow(0); // acts on its player, whoever has it now
        AWAIT_EQUAL(int(host.record.attached), 0);
        host.control->SysNativeControlShow(1);
        old->SysNativeControlDestroy();
        AWAIT_EQUAL(host.picture(), "RGBW");
        AWAIT_EQUAL(host.widget->findChildren<QQuickWidget *>().size(), 1);
        QVERIFY(view && host.view() == view && host.control);
        host.destroyControl();
        AWAIT(!view);
    }

    void onlyWhoHasAPipelineGivesItUp()
    {
        Host host(Host::Quick);
        host.open({});
        QMetaObject::invokeMethod(host.view(), "unrefPipe");
        QCOMPARE(host.load(media("quadrants.webm")), complete);
        AWAIT_EQUAL(host.picture(), "RGBW");
        QMetaObject::invokeMethod(host.view(), "unrefPipe");
        for (const int command : {MediaPlayerCommandPlayState, MediaPlayerCommandSeek})
            QCOMPARE(host.run(command), complete); // there is nothing to carry it out on
        QCOMPARE(host.load(media("tone.flac")), failed);
    }
};

PLAYER_TEST_MAIN(HostReactionsTest)
#include "host_reactions_test.moc"
