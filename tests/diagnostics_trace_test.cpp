#include "pipeline/GstHandle.h"
#include "pipeline/padAdded.h"
#include "tests/fixture.h"

#include <array>
#include <cstdio>
#include <mutex>

namespace
{

enum Thread { Gui, Update, Streaming };

/// What the GUI thread writes, as trace.txt has it: "-- " begins a heading, "widget: " and "quick:
/// " a line of one kind of host; MEDIA is the folder of the media.
QByteArray linesOf(Host::Kind kind)
{
    QFile file(QFINDTESTDATA("trace.txt"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no trace to compare with");
    QString lines = QString::fromLatin1(file.readAll());
    const QString own = QLatin1String(kind == Host::Widget ? "widget: " : "quick: ");
    const QString foreign = QLatin1String(kind == Host::Widget ? "quick: " : "widget: ");
    lines.remove(QRegularExpression(QStringLiteral("(?m)^(-- |%1).*\\n").arg(foreign)));
    return lines.remove(own).toLatin1().replace("MEDIA/", media(""));
}

const QByteArray stateLine = "MediaPlayerView::gstElementSetState: ";
const QByteArray toPaused = stateLine + "3\n";
const QByteArray prerollAnew = toPaused + stateLine + "1\n" + toPaused;
const QByteArray rewindAtTheEnd = stateLine + "2\n" + prerollAnew;
const QByteArray givingUp = "gstElementSetState: waited ~1000 ms, giving up\n";
// The item reports itself initialised each time it is back in a window.
const QByteArray pictureIsBack = "###             MediaPlayerControl::onVisible: 1\n"
                                 "MediaPlayerView::videoItemReady\n";

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

        QCOMPARE(written(Gui).split('\n'), linesOf(kind).split('\n'));
        const QByteArray restore = "Update invoke restore MP\n";
        const QByteArray commands = QByteArray("Update invoke updateValues MP\n").repeated(13);
        const QByteArray update = restore + commands + "Update invoke saveObject MP\n" + restore
            + restore + "Update invoke updateValues MP\n" + rewindAtTheEnd;
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
        return QByteArray(m_written[thread]).replace(givingUp, "");
    }

    /// Waits until these are the thread's last lines.
    void until(const QByteArray &last, Thread thread = Gui)
    {
        const auto came = [&] { return written(thread).endsWith(last); };
        QVERIFY2(QTest::qWaitFor(came, patience), last + " did not come");
    }

    void live(Host::Kind kind)
    {
        Host host(kind);
        const QByteArray film = media("quadrants.webm");
        host.open(film);
        // The restore is queued before a window of its own draws and finds the item ready.
        QVERIFY(blockForOnePass(host));
        until(kind == Host::Widget ? "restore done\n" : prerollAnew);
        host.play(GST_STATE_PLAYING);
        host.run(MediaPlayerCommandSeek);
        host.run(MediaPlayerCommandKeepAspectRatio);
        until(pictureIsBack);
        host.play(GST_STATE_NULL);
        // Where a preroll has ended all its streams have been offered.
        AWAIT_EQUAL(host.pipelineStates().first(), GST_STATE_PAUSED);
        host.load(media("yellow.mp4"));
        until(prerollAnew);
        for (const QByteArray &uri : QByteArrayList {film, film, "no URI", "file:///letter.txt",
                                                     media("tone.flac"), "appsrc://never.wav"}) {
            AWAIT_EQUAL(host.pipelineStates().first(), GST_STATE_PAUSED);
            host.load(uri);
        }
        QVERIFY(m_written[Gui].endsWith(toPaused + givingUp + "Update values done\n"));
        // A stream that the audio chain is offered and cannot take.
        const ObjectRef<GstElement> text(gst_element_factory_make("subparse", nullptr));
        gst_object_set_name(GST_OBJECT(host.view()->pipeline), "pipeline");
        pad_added_handler(nullptr, GST_PAD(text.get()->srcpads->data), host.view());
        host.load(film);

        host.play(GST_STATE_PLAYING);
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);
        host.record.pauseOnSave = host.record.resumeOnRestore = 1;
        host.control->SysNativeControlShow(0);
        until("save mp done\n");
        host.control->SysNativeControlMove(0, 0, 319, 239);
        host.control->SysNativeControlShow(1);
        until("restore done\n" + pictureIsBack);
        AWAIT_EQUAL(host.state(), GST_STATE_PLAYING);

        // The player outlives its control, here in both kinds of host.
        enableWorkaround = 1;
        host.control->saveObject();
        host.destroyControl();
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        until("restore done\n" + pictureIsBack);
        enableWorkaround = 0;

        host.record.seekPosition = 9 * GST_SECOND;
        host.run(MediaPlayerCommandSeek);
        until(rewindAtTheEnd, Update);
        host.view()->stabilizeAfterLoad();
        host.view()->gstElementFactoryMake("no such factory", nullptr);
        until(stateLine + "1\n" + toPaused);
        AWAIT_EQUAL(host.pipelineStates().first(), GST_STATE_PAUSED);
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
