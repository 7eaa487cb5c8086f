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
V::gstInit; V::connect onVisible; V::loadFile; V::gstInit; MP: search map for $film
$new; MP: video; =2; C::SysNativeControlShow: 1
{$able; =3; =1; =3; V::restore; restore done|V::restore; restore done; $able; =3; =1; =3}
$play; V::updateValues: 4; $done; V::updateValues: 12; $done; V::resetItem; $unable; $able
V::updateValues: 2; V::updateSize; =2; =1; =3; $done
$load $silent; $new; MP: video; =2; =2; $done; V::videoItemReady; =3; =1; =3
$load $film; $found; $done; V::updateValues: 0; V::loadFile; MP: Skip same filename; $done
V::updateValues: 0; V::loadFile; $done; $load file:///letter.txt; $new; =3; $done
$load $tone; $new; MP: pure audio; =2; =2; =3; $done
$load appsrc://never.wav; $new; MP: pure audio; =2; =2; =3; $done
$load $film; $found; $done; $play
C::SysNativeControlShow: 0; $save; C::SysNativeControlMove; $back
C::saveObject; $save; C::SysNativeControlDestroy; C::~MediaPlayerControl; $created
C::SysNativeControlSetSettings; V::updateReferences; $back; V::updateValues: 4; $done
V::stabilizeAfterLoad; =2; =3; V::gstElementFactoryMake; V::nulldownAndPauseOnGuiThread; =1; =3
$load $silent; $found; $done; pad_added_handler MP; Received new pad 'src' from 'pipeline':
  It has type 'text/x-raw'.;   Type is 'text/x-raw' but link failed.
{C::SysNativeControlDestroy; C::~MediaPlayerControl; V::onDestruct; V::~MediaPlayerView; =1|$unable
V::onDestruct; C::onDestruct; =1; C::~MediaPlayerControl; V::~MediaPlayerView}; V::destroy thread)";

QByteArray lines(QByteArray text)
{
    const std::pair<const char *, const char *> shorthand[] = {
        {"$created",
         "{Create MP; C::MediaPlayerControl Widget|CreateQML MP; C::MediaPlayerControl QML}"},
        {"$load", "V::updateValues: 0; V::loadFile; MP: search map for"},
        {"$play", "V::updateValues: 2; V::updateSize; =4; $done"},
        {"$back", "C::SysNativeControlShow: 1; V::restore; =4; restore done; $able"},
        {"$save", "V::saveObject; $unable; =3; save mp done"},
        {"$found", "MP: found entry in map; =2; =3; MP: done"},
        {"$new", "MP: Create new pipeline"},
        {"$done", "Update values done"},
        {"$wait", "gstElementSetState: waited ~1000 ms, giving up"},
        {"$unable", "###             C::onVisible: 0"},
        // The item reports itself initialised each time it is back in a window.
        {"$able", "###             C::onVisible: 1; V::videoItemReady"},
        {"$values", "Update invoke updateValues MP"},
        {"$restore", "Update invoke restore MP"},
        {"=", "V::gstElementSetState: "},
        {"V::", "MediaPlayerView::"},
        {"C::", "MediaPlayerControl::"},
        {"; ", "\n"}};
    for (const auto &[sign, meaning] : shorthand)
        text.replace(sign, meaning);
    return text + '\n';
}

} // namespace

class TraceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Standard output is recorded by the thread that wrote it.
    void init()
    {
        cookie_io_functions_t functions = {};
        functions.write = [](void *test, const char *bytes, std::size_t size) {
            static_cast<TraceTest *>(test)->record(QByteArray(bytes, qsizetype(size)));
            return ssize_t(size);
        };
        m_stdout = std::exchange(stdout, fopencookie(this, "w", functions));
        setvbuf(stdout, nullptr, _IOLBF, 4096);
    }

    void cleanup()
    {
        fclose(std::exchange(stdout, m_stdout));
        m_written = {};
        m_update = nullptr;
        enableDebug = 0;
        enableWorkaround = 0;
    }

    void wholeLife_data() { addKinds(); }

    void wholeLife()
    {
        QFETCH(Host::Kind, kind);
        enableDebug = 1;
        live(kind);
        if (QTest::currentTestFailed())
            return;
        QByteArray gui = life;
        gui.replace("$film", m_film).replace("$silent", m_silent).replace("$tone", m_tone);
        QString expected = QString::fromLatin1(lines(gui));
        expected.replace(QRegularExpression(QStringLiteral("\\{([^|]*)\\|([^}]*)\\}")),
                         kind == Host::Widget ? QStringLiteral("\\1") : QStringLiteral("\\2"));
        QCOMPARE(written(Gui).split('\n'), expected.toLatin1().split('\n'));
        const QByteArray update = lines("$restore; " + QByteArray("$values; ").repeated(13)
                                        + "Update invoke saveObject MP; $restore; $restore; "
                                          "$values; =2; =3; =1; =3; $values");
        QCOMPARE(written(Update).split('\n'), update.split('\n'));
        // How often a pipeline prerolls is told by its states.
        QString offered = QString::fromLatin1(written(Streaming));
        offered.replace(QRegularExpression(
                            QStringLiteral("pad_added_handler MP\nReceived new pad 'src_\\d+' from "
                                           "'pipeline\\d+':\n  It has type '(\\w+)/x-raw'\\.\n")),
                        QStringLiteral("\\1 "));
        const QRegularExpression prerolls(QStringLiteral(
            "^(video audio )+(video )+(video audio )+(audio )+(video audio )+(video )+$"));
        QVERIFY2(prerolls.match(offered).hasMatch(), qPrintable(offered));
    }

    void nothingIsWrittenWithTracingOff()
    {
        live(Host::Widget);
        QCOMPARE(m_written[Gui] + m_written[Update] + m_written[Streaming], QByteArray());
    }

private:
    void record(const QByteArray &line)
    {
        const std::lock_guard guard(m_mutex);
        const auto thread = QThread::currentThreadId();
        if (line.startsWith("Update invoke"))
            m_update = thread;
        m_written[thread == m_gui ? Gui : thread == m_update ? Update : Streaming] += line;
    }

    /// But for the waits that a busy machine adds.
    QByteArray written(Thread thread)
    {
        const std::lock_guard guard(m_mutex);
        return QByteArray(m_written[thread]).replace(lines("$wait"), "");
    }

    /// While tracing waits until these are the thread's last lines.
    void until(const QByteArray &last, Thread thread = Gui)
    {
        const auto came = [&] { return written(thread).endsWith(lines(last)); };
        QVERIFY2(!enableDebug || QTest::qWaitFor(came, patience), last + " did not come");
    }

    void live(Host::Kind kind)
    {
        Host host(kind);
        // What the current pipeline was asked for is reached, so its streams have been offered.
        const auto settled = [&host] {
            return gst_element_get_state(host.view()->pipeline, nullptr, nullptr, 0)
                == GST_STATE_CHANGE_SUCCESS;
        };
        host.open(m_film);
        // The restore is queued before a window of its own draws and finds the item ready.
        QVERIFY(blockForOnePass(host));
        until(kind == Host::Widget ? "restore done" : "=3; =1; =3");
        host.play(GST_STATE_PLAYING);
        host.run(MediaPlayerCommandSeek);
        host.run(MediaPlayerCommandKeepAspectRatio);
        until("$able");
        host.play(GST_STATE_NULL);
        AWAIT(settled());

        host.load(m_silent);
        until("=3; =1; =3");
        for (const char *uri : {m_film.data(), m_film.data(), "no URI", "file:///letter.txt",
                                m_tone.data(), "appsrc://never.wav"}) {
            AWAIT(settled());
            host.load(uri);
        }
        QVERIFY(!enableDebug || m_written[Gui].endsWith(lines("=3; $wait; $done")));
        host.load(m_film);

        host.play(GST_STATE_PLAYING);
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
        host.record.pauseOnSave = 1;
        host.record.resumeOnRestore = 1;
        host.control->SysNativeControlShow(0);
        AWAIT(loadRelaxed(host.record.attached) == 0);
        host.control->SysNativeControlMove(0, 0, 319, 239);
        host.control->SysNativeControlShow(1);
        AWAIT(loadRelaxed(host.record.attached) == 1);
        until("$able");

        // The player outlives its control, here in both kinds of host.
        enableWorkaround = 1;
        host.control->saveObject();
        host.destroyControl();
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT(loadRelaxed(host.record.attached) == 1);
        until("$able");
        enableWorkaround = 0;

        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
        host.record.seekPosition = 9 * GST_SECOND;
        host.run(MediaPlayerCommandSeek);
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
        until("=2; =3; =1; =3", Update);
        QVERIFY(QMetaObject::invokeMethod(host.view(), "stabilizeAfterLoad"));
        host.view()->gstElementFactoryMake("no such factory", nullptr);
        until("=1; =3");
        AWAIT(settled());

        host.load(m_silent);
        AWAIT(settled());
        // A stream that the audio chain is offered and cannot take.
        const ObjectRef<GstElement> text(gst_element_factory_make("subparse", nullptr));
        gst_object_set_name(GST_OBJECT(host.view()->pipeline), "pipeline");
        pad_added_handler(nullptr, GST_PAD(text.get()->srcpads->data), host.view());
        if (kind == Host::Widget)
            host.destroyControl();
        else
            delete host.item;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    const QByteArray m_film = media("quadrants.webm");
    const QByteArray m_silent = media("yellow.mp4");
    const QByteArray m_tone = media("tone.flac");
    FILE *m_stdout = nullptr;
    const Qt::HANDLE m_gui = QThread::currentThreadId();
    Qt::HANDLE m_update = nullptr;
    std::mutex m_mutex;
    std::array<QByteArray, 3> m_written;
};

PLAYER_TEST_MAIN(TraceTest)
#include "diagnostics_trace_test.moc"
