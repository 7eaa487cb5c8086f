#include "pipeline/GstHandle.h"
#include "pipeline/padAdded.h"
#include "tests/fixture.h"

#include <array>
#include <cstdio>
#include <mutex>

namespace
{

enum Thread { Gui, Update, Streaming };

/// What the GUI thread writes, {in a widget host|in a Qt Quick host}.
constexpr char life[] = R"($created
C::SysNativeControlSetSettings; V::MediaPlayerView; V::init; V::gstInit; V::initQuickWidget
V::gstInit; V::connect onVisible; V::loadFile; V::gstInit; MP: search map for $quadrants.webm
$new; MP: video; =2; C::SysNativeControlShow: 1
{$able; =3; =1; =3; V::restore; restore done|V::restore; restore done; $able; =3; =1; =3}
V::updateValues: 2; V::updateSize; =4; $done; V::updateValues: 4; $done; V::updateValues: 12; $done
V::resetItem; $unable; $able; V::updateValues: 2; V::updateSize; =2; =1; =3; $done
$load $yellow.mp4; $new; MP: video; =2; =2; $done; V::videoItemReady; =3; =1; =3
$load $quadrants.webm; $found; V::updateValues: 0; V::loadFile; MP: Skip same filename; $done
V::updateValues: 0; V::loadFile; $done; $load file:///letter.txt; $new; =3; $done
$load $tone.flac; $new; MP: pure audio; =2; =2; =3; $done
$load appsrc://never.wav; $new; MP: pure audio; =2; =2; =3; $done
pad_added_handler MP; Received new pad 'src' from 'pipeline':;   It has type 'text/x-raw'.
  Type is 'text/x-raw' but link failed.; $load $quadrants.webm; $found
V::updateValues: 2; V::updateSize; =4; $done; C::SysNativeControlShow: 0; $save
C::SysNativeControlMove; $back; C::saveObject; $save; C::SysNativeControlDestroy; C::~MediaPlayerControl
$created; C::SysNativeControlSetSettings; V::updateReferences; $back; V::updateValues: 4; $done
V::stabilizeAfterLoad; =2; =3; V::gstElementFactoryMake; V::nulldownAndPauseOnGuiThread; =1; =3
{C::SysNativeControlDestroy; C::~MediaPlayerControl; V::onDestruct; V::~MediaPlayerView; =1|$unable
V::onDestruct; C::onDestruct; =1; C::~MediaPlayerControl; V::~MediaPlayerView}; V::destroy thread)";

QByteArray lines(QByteArray text)
{
    const std::pair<const char *, QByteArray> shorthand[] = {
        {"$created", "{Create|CreateQML} MP; C::MediaPlayerControl {Widget|QML}"},
        {"$load", "V::updateValues: 0; V::loadFile; MP: search map for"},
        {"$back", "C::SysNativeControlShow: 1; V::restore; =4; restore done; $able"},
        {"$save", "V::saveObject; $unable; =3; save mp done"},
        {"$found", "MP: found entry in map; =2; =3; MP: done; $done"},
        {"$new", "MP: Create new pipeline"},
        {"$done", "Update values done"},
        {"$wait", "gstElementSetState: waited ~1000 ms, giving up"},
        {"$unable", "###             C::onVisible: 0"},
        // The item reports itself initialised each time it is back in a window.
        {"$able", "###             C::onVisible: 1; V::videoItemReady"},
        {"=", "V::gstElementSetState: "},
        {"?", "Update invoke "},
        {"V::", "MediaPlayerView::"},
        {"C::", "MediaPlayerControl::"},
        {"; ", "\n"},
        {"$", media("")}};
    for (const auto &[sign, meaning] : shorthand)
        text.replace(sign, meaning);
    return text + '\n';
}

} // namespace

class TraceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeLife_data() { addKinds(); }

    void wholeLife()
    {
        QFETCH(Host::Kind, kind);
        m_written = {};
        FILE *const console =
            std::exchange(stdout, fopencookie(this, "w", {nullptr, record, nullptr, nullptr}));
        setvbuf(stdout, nullptr, _IOLBF, 4096);
        Host(kind).open(media("tone.flac")); // writes nothing yet
        enableDebug = 1;
        live(kind);
        enableDebug = 0;
        fclose(std::exchange(stdout, console));

        QString expected = QString::fromLatin1(lines(life));
        expected.replace(QRegularExpression(QStringLiteral("\\{([^|]*)\\|([^}]*)\\}")),
                         kind == Host::Widget ? QStringLiteral("\\1") : QStringLiteral("\\2"));
        QCOMPARE(written(Gui).split('\n'), expected.toLatin1().split('\n'));
        const QByteArray update =
            lines("?restore MP; " + QByteArray("?updateValues MP; ").repeated(13)
                  + "?saveObject MP; ?restore MP; ?restore MP; ?updateValues MP; =2; =3; =1; =3");
        QCOMPARE(written(Update).split('\n'), update.split('\n'));
        // How often a pipeline prerolls is told by its states.
        const QRegularExpression pads(QStringLiteral(
            "^(pad_added_handler MP\nReceived new pad 'src_\\d+' from 'pipeline\\d+':\n"
            "  It has type '(audio|video)/x-raw'\\.\n)+$"));
        QVERIFY(pads.match(QString::fromLatin1(written(Streaming))).hasMatch());
    }

private:
    /// Takes a line that is written to standard output, by the thread that writes it.
    static ssize_t record(void *cookie, const char *bytes, std::size_t size)
    {
        auto *const test = static_cast<TraceTest *>(cookie);
        const QByteArray line(bytes, qsizetype(size));
        const bool gui = QThread::currentThreadId() == test->m_gui;
        const bool update = line.startsWith("Update") || line.startsWith("MediaPlayerView");
        const std::lock_guard guard(test->m_mutex);
        test->m_written[gui ? Gui : update ? Update : Streaming] += line;
        return ssize_t(size);
    }

    /// But for the waits that a busy machine adds.
    QByteArray written(Thread thread)
    {
        const std::lock_guard guard(m_mutex);
        return QByteArray(m_written[thread]).replace(lines("$wait"), "");
    }

    /// Waits until these are the thread's last lines.
    void until(const QByteArray &last, Thread thread = Gui)
    {
        const auto came = [&] { return written(thread).endsWith(lines(last)); };
        QVERIFY2(QTest::qWaitFor(came, patience), last + " did not come");
    }

    void live(Host::Kind kind)
    {
        Host host(kind);
        const QByteArray film = media("quadrants.webm");
        host.open(film);
        // The restore is queued before a window of its own draws and finds the item ready.
        QVERIFY(blockForOnePass(host));
        until(kind == Host::Widget ? "restore done" : "=3; =1; =3");
        host.play(GST_STATE_PLAYING);
        host.run(MediaPlayerCommandSeek);
        host.run(MediaPlayerCommandKeepAspectRatio);
        until("$able");
        host.play(GST_STATE_NULL);
        // Where a preroll has ended all its streams have been offered.
        AWAIT_EQUAL(host.pipelineStates().first(), 3);
        host.load(media("yellow.mp4"));
        until("=3; =1; =3");
        for (const QByteArray &uri : QByteArrayList {film, film, "no URI", "file:///letter.txt",
                                                     media("tone.flac"), "appsrc://never.wav"}) {
            AWAIT_EQUAL(host.pipelineStates().first(), 3);
            host.load(uri);
        }
        QVERIFY(m_written[Gui].endsWith(lines("=3; $wait; $done")));
        // A stream that the audio chain is offered and cannot take.
        const ObjectRef<GstElement> text(gst_element_factory_make("subparse", nullptr));
        gst_object_set_name(GST_OBJECT(host.view()->pipeline), "pipeline");
        pad_added_handler(nullptr, GST_PAD(text.get()->srcpads->data), host.view());
        host.load(film);

        host.play(GST_STATE_PLAYING);
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
        host.record.pauseOnSave = host.record.resumeOnRestore = 1;
        host.control->SysNativeControlShow(0);
        until("$save");
        host.control->SysNativeControlMove(0, 0, 319, 239);
        host.control->SysNativeControlShow(1);
        until("$back");
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);

        // The player outlives its control, here in both kinds of host.
        enableWorkaround = 1;
        host.control->saveObject();
        host.destroyControl();
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        until("$back");
        enableWorkaround = 0;

        host.record.seekPosition = 9 * GST_SECOND;
        host.run(MediaPlayerCommandSeek);
        until("=2; =3; =1; =3", Update);
        host.view()->stabilizeAfterLoad();
        host.view()->gstElementFactoryMake("no such factory", nullptr);
        until("=1; =3");
        AWAIT_EQUAL(host.pipelineStates().first(), 3);
        if (kind == Host::Widget)
            host.destroyControl();
        else
            delete host.item;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    const Qt::HANDLE m_gui = QThread::currentThreadId();
    std::mutex m_mutex;
    std::array<QByteArray, 3> m_written;
};

PLAYER_TEST_MAIN(TraceTest)
#include "diagnostics_trace_test.moc"
