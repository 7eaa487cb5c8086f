#include "pipeline/padAdded.h"
#include "tests/diagnostics_recorder.h"

#include <unistd.h>

namespace
{

QByteArray player(const char *operation)
{
    return QByteArray("MediaPlayerView::") + operation + '\n';
}

QByteArray control(const char *operation)
{
    return QByteArray("MediaPlayerControl::") + operation + '\n';
}

QByteArray states(std::initializer_list<int> numbers)
{
    QByteArray lines;
    for (const int number : numbers)
        lines += "MediaPlayerView::gstElementSetState: " + QByteArray::number(number) + '\n';
    return lines;
}

QByteArray search(const QByteArray &uri)
{
    return "MP: search map for " + uri + '\n';
}

QByteArray command(int code, const QByteArray &work = {})
{
    return "MediaPlayerView::updateValues: " + QByteArray::number(code) + '\n' + work
        + "Update values done\n";
}

QByteArray visible(int ready)
{
    return "###             MediaPlayerControl::onVisible: " + QByteArray::number(ready) + '\n';
}

const char queueCommand[] = "Update invoke updateValues MP\n";
const char queueSave[] = "Update invoke saveObject MP\n";
const char queueRestore[] = "Update invoke restore MP\n";
// The item reports itself initialised each time it is back in a window.
const QByteArray cameBack = visible(1) + player("videoItemReady");
const char created[] = "MP: Create new pipeline\n";
const QByteArray found = "MP: found entry in map\n" + states({2, 3}) + "MP: done\n";
const char givingUp[] = "gstElementSetState: waited ~1000 ms, giving up\n";

} // namespace

class TraceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeLife_data()
    {
        QTest::addColumn<Host::Kind>("kind");
        QTest::addColumn<bool>("tracing");
        QTest::newRow("widget") << Host::Widget << true;
        QTest::newRow("quick") << Host::Quick << true;
        QTest::newRow("widget, tracing off") << Host::Widget << false;
    }

    void wholeLife()
    {
        QFETCH(Host::Kind, kind);
        QFETCH(bool, tracing);
        m_recorder = std::make_unique<Recorder>();
        m_tracing = tracing;
        enableDebug = tracing;
        Host host(kind);
        m_host = &host;
        for (const auto step :
             {&TraceTest::open, &TraceTest::commands, &TraceTest::loads, &TraceTest::hideAndShow,
              &TraceTest::endOfStream, &TraceTest::calledByName, &TraceTest::refusedPad,
              &TraceTest::end}) {
            (this->*step)();
            if (QTest::currentTestFailed())
                break;
        }
    }

    void cleanup()
    {
        m_recorder.reset();
        enableDebug = 0;
        enableWorkaround = 0;
    }

private:
    /// Compares what each thread has written since the last call.
    void expect(const QByteArray &gui, const QByteArray &update = {},
                const QByteArray &streaming = {})
    {
        const Recorder::Written wanted =
            m_tracing ? Recorder::Written {gui, update, streaming} : Recorder::Written {};
        Recorder::Written written = m_recorder->take(wanted);
        // On a busy machine a preroll may take its second.
        if (!wanted.gui.contains(givingUp))
            written.gui.replace(givingUp, "");
        written.update.replace(givingUp, "");
        QCOMPARE(written.gui.split('\n'), wanted.gui.split('\n'));
        QCOMPARE(written.update.split('\n'), wanted.update.split('\n'));
        QCOMPARE(written.streaming.split('\n'), wanted.streaming.split('\n'));
    }

    /// What the decoder's pads are announced with, in one preroll after the other.
    QByteArray pads(const QByteArrayList &types, int prerolls = 1)
    {
        QByteArray lines;
        const QByteArray pipeline = GST_OBJECT_NAME(m_host->view()->pipeline);
        for (int preroll = 0; preroll < prerolls; ++preroll) {
            for (const QByteArray &type : types)
                lines += "pad_added_handler MP\nReceived new pad 'src_"
                    + QByteArray::number(m_padsOf[pipeline]++) + "' from '" + pipeline
                    + "':\n  It has type '" + type + "'.\n";
        }
        return lines;
    }

    void create()
    {
        m_host->create();
        if (m_host->kind == Host::Widget)
            expect("Create MP\n" + control("MediaPlayerControl Widget"));
        else
            expect("CreateQML MP\n" + control("MediaPlayerControl QML"));
    }

    void open()
    {
        m_host->setFileName(m_film + '\0');
        create();
        m_host->registerRecord();
        expect(control("SysNativeControlSetSettings") + player("MediaPlayerView") + player("init")
               + player("gstInit") + player("initQuickWidget") + player("gstInit")
               + player("connect onVisible") + player("loadFile") + player("gstInit")
               + search(m_film) + created + "MP: video\n" + states({2}));
        m_host->control->SysNativeControlShow(1);
        // The restore is queued before a window of its own draws and finds the item ready.
        QVERIFY(blockForOnePass(*m_host));
        AWAIT_EQUAL(m_host->state(), GST_STATE_PAUSED);
        const QByteArray restored = player("restore") + "restore done\n";
        const QByteArray ready = visible(1) + player("videoItemReady") + states({3, 1, 3});
        // A quick widget renders while it is being shown, a window when its turn comes.
        const bool widget = m_host->kind == Host::Widget;
        expect(control("SysNativeControlShow: 1") + (widget ? ready + restored : restored + ready),
               queueRestore, pads(m_filmPads, 2));
    }

    void commands()
    {
        play();
        QCOMPARE(m_host->run(MediaPlayerCommandSeek), complete);
        expect(command(4), queueCommand);
        QCOMPARE(m_host->run(MediaPlayerCommandKeepAspectRatio), complete);
        expect(command(12) + player("resetItem") + visible(0) + cameBack, queueCommand);
        QCOMPARE(m_host->play(GST_STATE_NULL), complete);
        expect(command(2, player("updateSize") + states({2, 1, 3})), queueCommand,
               pads(m_filmPads));
    }

    void load(const QByteArray &uri, const QByteArray &answer, const QByteArray &work,
              const QByteArray &after = {}, const QByteArrayList &types = {}, int prerolls = 1)
    {
        QCOMPARE(m_host->load(uri), answer);
        expect(command(0, player("loadFile") + work) + after, queueCommand, pads(types, prerolls));
    }

    void loads()
    {
        load(m_silentFilm, complete,
             search(m_silentFilm) + created + "MP: video\n" + states({2, 2}),
             player("videoItemReady") + states({3, 1, 3}), m_silentPads, 2);
        load(m_film, complete, search(m_film) + found, {}, m_filmPads);
        load(m_film, complete, "MP: Skip same filename\n");
        load("no URI", failed, {});
        load("file:///letter.txt", failed, search("file:///letter.txt") + created + states({3}));
        load(m_tone, complete, search(m_tone) + created + "MP: pure audio\n" + states({2, 2, 3}),
             {}, {"audio/x-raw"});

        // A source that never says anything.
        int ends[2];
        QCOMPARE(pipe(ends), 0);
        const QByteArray never = "fd://" + QByteArray::number(ends[0]) + "/never.wav";
        load(never, complete,
             search(never) + created + "MP: pure audio\n" + states({2, 2, 3}) + givingUp);
        load(m_film, complete, search(m_film) + found, {}, m_filmPads);
        close(ends[0]);
        close(ends[1]);
    }

    void play()
    {
        QCOMPARE(m_host->play(GST_STATE_PLAYING), complete);
        expect(command(2, player("updateSize") + states({4})), queueCommand);
    }

    void hideAndShow()
    {
        play();
        AWAIT_EQUAL(m_host->state(), GST_STATE_PLAYING);
        m_host->record.pauseOnSave = 1;
        m_host->record.resumeOnRestore = 1;
        m_host->control->SysNativeControlShow(0);
        expect(control("SysNativeControlShow: 0") + player("saveObject") + visible(0) + states({3})
                   + "save mp done\n",
               queueSave);
        m_host->control->SysNativeControlMove(0, 0, 319, 239);
        m_host->control->SysNativeControlShow(1);
        expect(control("SysNativeControlMove") + control("SysNativeControlShow: 1")
                   + player("restore") + states({4}) + "restore done\n" + cameBack,
               queueRestore);

        // The player outlives its control, here in both kinds of host.
        enableWorkaround = 1;
        m_host->control->saveObject();
        expect(control("saveObject") + player("saveObject") + visible(0) + states({3})
               + "save mp done\n");
        m_host->destroyControl();
        expect(control("SysNativeControlDestroy") + control("~MediaPlayerControl"));
        create();
        m_host->registerRecord();
        m_host->control->SysNativeControlShow(1);
        expect(control("SysNativeControlSetSettings") + player("updateReferences")
                   + control("SysNativeControlShow: 1") + player("restore") + states({4})
                   + "restore done\n" + cameBack,
               queueRestore);
        enableWorkaround = 0;
    }

    void endOfStream()
    {
        AWAIT_EQUAL(m_host->state(), GST_STATE_PLAYING);
        m_host->record.seekPosition = 9 * GST_SECOND;
        QCOMPARE(m_host->run(MediaPlayerCommandSeek), complete);
        AWAIT_EQUAL(m_host->state(), GST_STATE_PAUSED);
        expect(command(4), queueCommand + states({2, 3, 1, 3}), pads(m_filmPads, 2));
    }

    void calledByName()
    {
        QVERIFY(QMetaObject::invokeMethod(m_host->view(), "stabilizeAfterLoad"));
        m_host->view()->gstElementFactoryMake("no such factory", nullptr);
        expect(player("stabilizeAfterLoad") + states({2, 3}) + player("gstElementFactoryMake")
                   + player("nulldownAndPauseOnGuiThread") + states({1, 3}),
               {}, pads(m_filmPads, 2));
    }

    /// A stream that the audio chain is offered and cannot take.
    void refusedPad()
    {
        load(m_silentFilm, complete, search(m_silentFilm) + found, {}, m_silentPads);
        GstCaps *caps = gst_caps_new_empty_simple("text/x-raw");
        GstPad *pad = gst_pad_new_from_template(
            gst_pad_template_new("text", GST_PAD_SRC, GST_PAD_ALWAYS, caps), "text");
        pad_added_handler(nullptr, pad, m_host->view());
        expect(QByteArray("pad_added_handler MP\nReceived new pad 'text' from '")
               + GST_OBJECT_NAME(m_host->view()->pipeline)
               + "':\n  It has type 'text/x-raw'.\n  Type is 'text/x-raw' but link failed.\n");
        gst_caps_unref(caps);
        gst_object_unref(pad);
    }

    void end()
    {
        if (m_host->kind == Host::Widget)
            m_host->destroyControl();
        else
            delete m_host->item;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (m_host->kind == Host::Widget)
            expect(control("SysNativeControlDestroy") + control("~MediaPlayerControl")
                   + player("onDestruct") + player("~MediaPlayerView") + states({1})
                   + player("destroy thread"));
        else
            expect(visible(0) + player("onDestruct") + control("onDestruct") + states({1})
                   + control("~MediaPlayerControl") + player("~MediaPlayerView")
                   + player("destroy thread"));
    }

    const QByteArray m_film = media("quadrants.webm");
    const QByteArrayList m_filmPads = {"video/x-raw", "audio/x-raw"};
    const QByteArray m_silentFilm = media("yellow.mp4");
    const QByteArrayList m_silentPads = {"video/x-raw"};
    const QByteArray m_tone = media("tone.flac");

    std::unique_ptr<Recorder> m_recorder;
    bool m_tracing = false;
    QHash<QByteArray, int> m_padsOf; // a decoder goes on counting when it prerolls again
    Host *m_host = nullptr;
};

PLAYER_TEST_MAIN(TraceTest)
#include "diagnostics_trace_test.moc"
