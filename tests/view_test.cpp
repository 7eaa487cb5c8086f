#include "tests/fixture.h"

#include <QtQuick/QQuickWindow>

#include <unistd.h>

namespace
{

const QByteArray givesUp = "gstElementSetState: waited ~1000 ms, giving up\n";

} // namespace

/// What only the view class itself can show.
class ViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }
    void cleanup() { storeRelaxed(enableDebug, 0); }

    void methodsHaveTheirNamesAndOrder()
    {
        const QMetaObject &meta = MediaPlayerView::staticMetaObject;
        QByteArrayList signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            signatures += meta.method(i).methodSignature();
        QCOMPARE(
            signatures,
            QByteArrayList({"destruct()", "videoSurfaceReadyChanged(bool)", "restore()",
                            "saveObject()", "updateValues()", "busListenerFunction()", "loadFile()",
                            "gstElementSetState(GstState)", "resetItem()", "onDestruct()",
                            "unrefPipe()", "stabilizeAfterLoad()", "onVisible(bool)",
                            "nulldownAndPauseOnGuiThread()", "videoItemReady()"}));
        QCOMPARE(meta.method(meta.indexOfMethod("saveObject()")).returnType(), QMetaType::Bool);
        QCOMPARE(MediaPlayerControl::staticMetaObject.indexOfSlot("onDestruct()"),
                 MediaPlayerControl::staticMetaObject.methodOffset());
    }

    void aStateIsWaitedFor_data()
    {
        QTest::addColumn<QByteArray>("pipeline");
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("result");
        QTest::addColumn<bool>("gaveUp");
        constexpr auto failure = int(GST_STATE_CHANGE_FAILURE);
        constexpr auto success = int(GST_STATE_CHANGE_SUCCESS);
        const auto row = [](const char *name, const QByteArray &pipeline, int state, int result,
                            bool gaveUp = false) {
            QTest::newRow(name) << pipeline << state << result << gaveUp;
        };
        row("no pipeline", "", 3, failure);
        row("down to NULL", "fakesink", 1, success);
        row("prerolls", "fakesrc ! fakesink", 3, success);
        row("live", "fakesrc is-live=true ! fakesink", 3, success);
        row("never prerolls", "fakesink", 3, int(GST_STATE_CHANGE_ASYNC), true);
        row("refused", "filesrc location=/nowhere ! fakesink", 3, failure);
        row("no state", "fakesrc ! fakesink", 77, failure);
        row("no state, below", "fakesrc ! fakesink", -1, failure);
    }
    void aStateIsWaitedFor()
    {
        QFETCH(QByteArray, pipeline);
        QFETCH(int, state);
        QFETCH(int, result);
        QFETCH(bool, gaveUp);
        MediaPlayerView view;
        if (!pipeline.isEmpty()) {
            view.pipeline = gst_pipeline_new(nullptr);
            gst_bin_add(GST_BIN(view.pipeline),
                        gst_parse_bin_from_description(pipeline.constData(), FALSE, nullptr));
        }
        // By name, as a caller on another thread would.
        auto answer = GST_STATE_CHANGE_NO_PREROLL;
        Captured output(STDOUT_FILENO);
        storeRelaxed(enableDebug, 1);
        const bool invoked = QMetaObject::invokeMethod(&view, "gstElementSetState",
                                                       Q_RETURN_ARG(GstStateChangeReturn, answer),
                                                       Q_ARG(GstState, GstState(state)));
        storeRelaxed(enableDebug, 0);
        const QByteArray text = output.text();
        QVERIFY(invoked);
        QCOMPARE(int(answer), result);
        QCOMPARE(text,
                 "MediaPlayerView::gstElementSetState: " + QByteArray::number(state) + '\n'
                     + (gaveUp ? givesUp : QByteArray()));
    }

    void theSurfaceIsReadyWhenItCanBeSeen()
    {
        QQuickWindow window;
        MediaPlayerView view(nullptr, window.contentItem());
        auto *item = view.videoObject->findChild<QQuickItem *>(QStringLiteral("videoItem"));
        QVERIFY(item && !view.videoItem);
        QVERIFY(view.isVideoSurfaceReady());
        for (QQuickItem *hidden : {item, view.videoObject.data()}) {
            hidden->setVisible(false);
            QVERIFY(!view.isVideoSurfaceReady());
            hidden->setVisible(true);
        }
        item->setObjectName(QString());
        QVERIFY(!view.isVideoSurfaceReady());
        view.videoItem = item; // the current pipeline's, whatever it is called
        QVERIFY(view.isVideoSurfaceReady());
        view.saveObject();
        QVERIFY(!view.isVideoSurfaceReady());
        view.parentItem = window.contentItem();
        view.restore();
        QVERIFY(view.isVideoSurfaceReady());
        delete view.videoObject.data();
        QVERIFY(!view.isVideoSurfaceReady());
    }

    void stabilizingEndsPrerolled()
    {
        Host host(Host::Quick);
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);
        QVERIFY(QMetaObject::invokeMethod(host.view(), "stabilizeAfterLoad"));
        AWAIT(host.state() == 3 && host.position() == 0);
        AWAIT_EQUAL(host.picture(), "RGBW");
    }

    void cropIsAddedToTheObjectsSize()
    {
        Host host(Host::Quick, {640, 480});
        host.open(media("quadrants.webm"));
        AWAIT_EQUAL(host.picture(), "RGBW");
        host.record.cropLeft = 10;
        host.record.cropTop = 20;
        host.record.cropRight = 30;
        host.record.cropBottom = 40;
        const QRectF expected(-10, -20, 680, 540);
        QQuickItem *item = host.view()->videoItem;
        const auto geometry = [item] { return QRectF(item->position(), item->size()); };
        QCOMPARE(host.run(MediaPlayerCommandCrop), complete);
        QCOMPARE(geometry(), expected);
        item->setSize({1, 1});
        host.item->parentItem()->setPosition({7, 9});
        host.view()->restore();
        QCOMPARE(geometry(), expected);
        QCOMPARE(host.item->parentItem()->position(), QPointF(0, 0));
    }

    void aRaisedCommandKeepsItsFieldUnpublished()
    {
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);
        for (const int command : {MediaPlayerCommandPlayState, MediaPlayerCommandSeek}) {
            storeRelaxed(host.record.command, command);
            storeRelease(host.record.execute, 1);
            QVERIFY(blockForOnePass(host)); // this thread blocks, so the command cannot run
            storeRelaxed(host.record.state, 99);
            storeRelaxed(host.record.position, -99);
            QVERIFY(blockForOnePass(host));
            QCOMPARE(host.state() == 99, command == MediaPlayerCommandPlayState);
            QCOMPARE(host.position() == -99, command == MediaPlayerCommandSeek);
            AWAIT_EQUAL(int(loadAcquire(host.record.execute)), 0);
            AWAIT(host.state() == 4 && host.position() >= 0);
        }
    }

    // A direct saveObject() clears the flag that keeps a second slot from being queued.
    void aCommandRunsOnceWhateverIsParkedMeanwhile()
    {
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        QCOMPARE(host.play(4), complete);
        AWAIT(host.position() > 0);
        storeRelaxed(host.record.command, 6);

        Captured output(STDOUT_FILENO);
        storeRelaxed(enableDebug, 1);
        storeRelease(host.record.execute, 1);
        const bool queued = blockUntil([&] { return loadAcquire(host.view()->invokePending); });
        host.view()->saveObject();
        const bool passed = blockForOnePass(host);
        const bool answered =
            QTest::qWaitFor([&] { return !loadAcquire(host.record.execute); }, patience);
        QCoreApplication::processEvents();
        storeRelaxed(enableDebug, 0);
        const QByteArray text = output.text();
        QVERIFY(queued && passed && answered);
        QCOMPARE(text.count("MediaPlayerView::updateValues: 6\n"), 1);
        QVERIFY(!loadAcquire(host.view()->invokePending));
    }

    void nothingIsWrittenWhileTracingIsOff()
    {
        Captured output(STDOUT_FILENO);
        Captured errors(STDERR_FILENO);
        bool went = true;
        for (const Host::Kind kind : {Host::Widget, Host::Quick}) {
            Host host(kind);
            host.open(media("quadrants.webm"));
            went = went && QTest::qWaitFor([&] { return host.state() == 3; }, patience);
            went = went && host.play(4) == complete;
            went = went && host.load(media("tone.flac")) == complete;
            went = went && host.load(media("quadrants.webm")) == complete;
            went = went && host.load("file:///film.txt") == failed;
            host.control->SysNativeControlShow(0);
            went = went
                && QTest::qWaitFor([&] { return !loadRelaxed(host.record.attached); }, patience);
            host.destroyControl();
        }
        const QByteArray text = output.text() + errors.text();
        QVERIFY(went);
        QCOMPARE(text, "");
    }
};

PLAYER_TEST_MAIN(ViewTest)
#include "view_test.moc"
