#include "tests/interleaving.h"

// A host that acts in the middle of a call, and hosts whose controls and records overlap. It gives
// a record back as soon as `view` reads null, and what has been freed is overwritten; see
// CMakeLists.txt.

namespace
{

using Step = void (*)(Host &);
using Subject = QObject *(*)(Host &);

constexpr Step destroyControl = [](Host &host) { host.destroyControl(); };
constexpr Step loseWindow = [](Host &host) { host.window.reset(); };
constexpr Step loseItem = [](Host &host) { delete host.item; };
constexpr Step loseView = [](Host &host) { delete host.view(); };
constexpr Step save = [](Host &host) { host.control->saveObject(); };
constexpr Step bind = [](Host &host) { host.registerRecord(); };
constexpr Step bindElsewhere = [](Host &host) {
    const auto old = std::exchange(host.window, std::make_unique<QQuickWindow>());
    host.create();
    host.registerRecord();
};
template <int shown>
constexpr Step show = [](Host &host) { host.control->SysNativeControlShow(shown); };
template <int command>
constexpr Step raise = [](Host &host) { host.raise(command); };

/// When the host reacts: on a signal, or before an event.
struct Moment {
    Subject subject;
    const char *signal;
    QEvent::Type event = QEvent::None;
};

constexpr Subject place = [](Host &host) -> QObject * { return host.place(); };
constexpr Subject frame = [](Host &host) -> QObject * { return host.place()->parentItem(); };
constexpr Subject video = [](Host &host) -> QObject * { return host.videoItem(); };
constexpr Subject window = [](Host &host) -> QObject * { return host.window.get(); };
constexpr Subject view = [](Host &host) -> QObject * { return host.view(); };
constexpr Subject widget = [](Host &host) -> QObject * {
    return host.widget->findChild<QQuickWidget *>();
};

const Moment childMoves {place, SIGNAL(childrenChanged())};
const Moment frameMoves {frame, SIGNAL(xChanged())};
const Moment videoGrows {video, SIGNAL(widthChanged())};
const Moment videoFades {video, SIGNAL(opacityChanged())};
const Moment videoTurns {video, SIGNAL(angleChanged())};
const Moment viewEnds {view, SIGNAL(destruct())};
const Moment windowLoses {window, nullptr, QEvent::ChildRemoved};
const Moment widgetShows {widget, nullptr, QEvent::Show};
const Moment widgetHides {widget, nullptr, QEvent::Hide};

enum Begin { Created, Bound, Playing, Parked };

const struct Case {
    const char *name;
    Host::Kind kind;
    Begin begin;
    Step call;
    Moment moment;
    Step react;
} cases[] = {
    {"saved", Host::Quick, Playing, save, childMoves, destroyControl},
    {"saved, widget", Host::Widget, Playing, save, childMoves, destroyControl},
    {"shown", Host::Widget, Bound, show<1>, widgetShows, destroyControl},
    {"hidden", Host::Widget, Playing, show<0>, widgetHides, destroyControl},
    {"registered", Host::Quick, Created, bind, childMoves, destroyControl},
    {"registered, widget", Host::Widget, Created, bind, childMoves, destroyControl},
    {"registered elsewhere", Host::Quick, Parked, bindElsewhere, windowLoses, destroyControl},
    {"restored", Host::Quick, Parked, show<1>, frameMoves, loseWindow},
    {"cropped", Host::Quick, Playing, raise<MediaPlayerCommandCrop>, videoGrows, loseWindow},
    {"faded", Host::Quick, Playing, raise<MediaPlayerCommandOpacity>, videoFades, loseWindow},
    {"turned", Host::Quick, Playing, raise<MediaPlayerCommandTransform>, videoTurns, loseWindow},
    {"scene ends", Host::Quick, Playing, loseItem, viewEnds, loseView},
};

/// Lets the host react once.
class Reaction : public QObject
{
    Q_OBJECT

public:
    Reaction(Host &host, const Case &row) : m_host(host), m_row(row)
    {
        QObject *const subject = row.moment.subject(host);
        if (row.moment.signal)
            connect(subject, row.moment.signal, this, SLOT(act()));
        else
            subject->installEventFilter(this);
    }

    bool done = false;

public Q_SLOTS:
    void act()
    {
        if (std::exchange(done, true))
            return;
        m_row.react(m_host);
        if (m_row.react != destroyControl)
            m_host.giveBackRecord();
    }

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == m_row.moment.event)
            act();
        return false;
    }

    Host &m_host;
    const Case m_row;
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
        if (row.begin >= Playing) {
            openAndPlay(host);
        } else {
            host.setFileName(media("tone.flac") + '\0');
            host.create();
            if (row.begin == Bound)
                host.registerRecord();
        }
        if (row.begin == Parked) {
            hideAndPark(host);
            host.place()->parentItem()->setX(9);
        }
        host.record.cropRight = 9; // operands that change something
        host.record.opacity = 0.5;
        host.record.transformParam = 90;
        const QPointer<MediaPlayerView> player = host.view();
        Reaction reaction(host, row);
        row.call(host);
        AWAIT(reaction.done && !host.control);
        if (player && row.react == destroyControl && row.kind == Host::Quick)
            QCOMPARE(host.run(MediaPlayerCommandVolume), complete);
        else
            AWAIT(!player && host.giveBackRecord());
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
            const std::int64_t marked = host.position(); // published only after the slot is posted
            QVERIFY(blockUntil([&] { return host.position() != marked; }));
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
