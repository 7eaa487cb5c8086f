#include "tests/fixture.h"

#include <QtQuick/QQuickWindow>

/// What only the view class itself can show.
class ViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }

    void methodsHaveTheirNamesAndOrder()
    {
        const QMetaObject &meta = MediaPlayerView::staticMetaObject;
        QByteArrayList signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            signatures += meta.method(i).methodSignature();
        QCOMPARE(signatures.join(' '),
                 "destruct() videoSurfaceReadyChanged(bool) restore() saveObject() updateValues() "
                 "busListenerFunction() loadFile() gstElementSetState(GstState) resetItem() "
                 "onDestruct() unrefPipe() stabilizeAfterLoad() onVisible(bool) "
                 "nulldownAndPauseOnGuiThread() videoItemReady()");
        QCOMPARE(meta.method(meta.indexOfMethod("saveObject()")).returnType(), QMetaType::Bool);
        QCOMPARE(MediaPlayerControl::staticMetaObject.indexOfSlot("onDestruct()"),
                 MediaPlayerControl::staticMetaObject.methodOffset());
    }

    void aStateIsWaitedFor()
    {
        const struct {
            const char *elements;
            int state;
            GstStateChangeReturn result;
        } rows[] = {
            {nullptr, 3, GST_STATE_CHANGE_FAILURE},
            {"fakesrc ! fakesink", 3, GST_STATE_CHANGE_SUCCESS},
            {"fakesrc is-live=true ! fakesink", 3, GST_STATE_CHANGE_SUCCESS},
            {"fakesink", 3, GST_STATE_CHANGE_ASYNC}, // never prerolls
            {"filesrc location=/nowhere ! fakesink", 3, GST_STATE_CHANGE_FAILURE},
            {"fakesrc ! fakesink", -1, GST_STATE_CHANGE_FAILURE},
        };
        for (const auto &[elements, state, result] : rows) {
            MediaPlayerView view;
            if (elements) {
                view.pipeline = gst_pipeline_new(nullptr);
                gst_bin_add(GST_BIN(view.pipeline),
                            gst_parse_bin_from_description(elements, FALSE, nullptr));
            }
            // By name, as a caller on another thread would.
            auto answer = GST_STATE_CHANGE_NO_PREROLL;
            QVERIFY(QMetaObject::invokeMethod(&view, "gstElementSetState",
                                              Q_RETURN_ARG(GstStateChangeReturn, answer),
                                              Q_ARG(GstState, GstState(state))));
            QVERIFY2(answer == result, elements);
        }
    }

    void aPlaceIsReadyWhenItCanBeSeen()
    {
        QQuickWindow window;
        auto *frame = new QQuickItem(window.contentItem());
        MediaPlayerView view(nullptr, new QQuickItem(frame));
        auto *item = view.videoObject->findChild<QQuickItem *>(QStringLiteral("videoItem"));
        QVERIFY(item && view.isVideoSurfaceReady());
        for (QQuickItem *hidden : {item, view.videoObject.data()}) {
            hidden->setVisible(false);
            QVERIFY(!view.isVideoSurfaceReady());
            hidden->setVisible(true);
        }
        view.saveObject();
        QVERIFY(!view.isVideoSurfaceReady());
        frame->setPosition({7, 9});
        view.restore();
        QVERIFY(view.isVideoSurfaceReady());
        QCOMPARE(frame->position(), QPointF(0, 0));
        delete view.videoObject.data();
        QVERIFY(!view.isVideoSurfaceReady());
    }

    void aRaisedCommandKeepsItsFieldUnpublished()
    {
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), 3);
        host.record.playState = 3;
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
            AWAIT(host.state() == 3 && host.position() >= 0);
        }
    }
};

PLAYER_TEST_MAIN(ViewTest)
#include "view_test.moc"
