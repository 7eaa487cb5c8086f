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
            signatures += meta.method(i).typeName() + (' ' + meta.method(i).methodSignature());
        QCOMPARE(signatures.join(' ').replace("void ", ""),
                 "destruct() videoSurfaceReadyChanged(bool) restore() bool saveObject() "
                 "updateValues() busListenerFunction() bool loadFile() "
                 "GstStateChangeReturn gstElementSetState(GstState) resetItem() onDestruct() "
                 "unrefPipe() stabilizeAfterLoad() onVisible(bool) nulldownAndPauseOnGuiThread() "
                 "videoItemReady()");
    }

    void aStateIsWaitedFor()
    {
        const std::pair<const char *, GstStateChangeReturn> rows[] = {
            {"fakesrc ! fakesink", GST_STATE_CHANGE_SUCCESS},
            {"fakesrc is-live=true ! fakesink", GST_STATE_CHANGE_SUCCESS},
            {"fakesink fakesink", GST_STATE_CHANGE_ASYNC}, // never prerolls
            {"filesrc location=/nowhere ! fakesink", GST_STATE_CHANGE_FAILURE},
        };
        for (const auto &[elements, result] : rows) {
            MediaPlayerView view;
            QVERIFY(view.gstElementSetState(GST_STATE_PAUSED) == GST_STATE_CHANGE_FAILURE);
            view.pipeline = gst_parse_launch(elements, nullptr);
            QVERIFY2(view.gstElementSetState(GST_STATE_PAUSED) == result, elements);
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
    }

    void aRaisedCommandKeepsItsFieldUnpublished()
    {
        Host host(Host::Quick);
        host.open(media("tone.flac"));
        AWAIT_EQUAL(host.state(), GST_STATE_PAUSED);
        host.record.playState = GST_STATE_PAUSED;
        for (const int command : {MediaPlayerCommandPlayState, MediaPlayerCommandSeek}) {
            storeRelaxed(host.record.command, command);
            storeRelease(host.record.execute, 1);
            QVERIFY(blockForOnePass(host)); // this thread blocks, so the command cannot run
            storeRelaxed(host.record.state, 99);
            storeRelaxed(host.record.position, -99);
            QVERIFY(blockForOnePass(host));
            QCOMPARE(host.state() == 99, command == MediaPlayerCommandPlayState);
            QCOMPARE(host.position() == -99, command == MediaPlayerCommandSeek);
            AWAIT(host.state() == GST_STATE_PAUSED && host.position() >= 0);
        }
    }
};

PLAYER_TEST_MAIN(ViewTest)
#include "view_test.moc"
