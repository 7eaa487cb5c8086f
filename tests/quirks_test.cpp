#include "tests/interleaving.h"

#include <malloc.h>

// What the entries in quirks/ are for, where no other test would miss them. Runs in both of Qt's
// render loops.

class QuirksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The picture enters a hidden window, then a shown one, and goes; then the first is shown.
    void itemGoesWhileAnEarlierWindowIsHidden()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        const QPointer<QQuickItem> videoItem = host.view()->videoItem;
        host.setShown(false);
        hideAndPark(host);
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(int(host.record.attached), 1);
        host.control->saveObject();

        const auto first = std::exchange(host.window, std::make_unique<QQuickWindow>());
        host.window->resize(first->size());
        host.window->show();
        host.item = nullptr; // stays in the first window
        host.create();
        host.registerRecord();
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "RGBW");

        mallopt(M_PERTURB, 0xa5); // what has been freed holds no sense any more
        delete host.view()->parentItem;
        QVERIFY(!videoItem); // nothing waits for a window that may never be shown again
        std::atomic<bool> synchronized = false; // from the render thread
        connect(
            first.get(), &QQuickWindow::afterSynchronizing, first.get(),
            [&] { synchronized = true; }, Qt::DirectConnection);
        first->show();
        AWAIT(synchronized);
        mallopt(M_PERTURB, 0);
    }

    // One thread draws for all of them: the GUI thread for widgets, and in the basic loop for any.
    // An item that has entered its window twice leaves GStreamer's note of its GL context alive.
    void drawsAfterOthersOnItsThread()
    {
        for (const Host::Kind kind : {Host::Quick, Host::Widget, Host::Quick, Host::Widget}) {
            Host host(kind);
            openAndPlay(host);
            hideAndPark(host);
            host.control->SysNativeControlShow(1);
            AWAIT_EQUAL(host.picture(), "RGBW");
        }
    }

    // Each film that is new gets its own sink; the GL contexts are the leaks tracer's to find.
    void prerollsWhileHidden()
    {
        Host host(Host::Quick);
        openAndPlay(host);
        hideAndPark(host);
        for (const char *film : {"./quadrants.webm", "yellow.mp4"}) {
            QCOMPARE(host.load(media(film)), complete);
            QCOMPARE(host.play(GST_STATE_PAUSED), complete);
            AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
        }
        host.control->SysNativeControlShow(1);
        AWAIT_EQUAL(host.picture(), "YYYY");
    }

    // decodebin loses the error now and then, so that its bus is emptied here.
    void tellsOfADemuxerThatGaveUp()
    {
        QTemporaryFile cut;
        QFile whole(QUrl(QString::fromUtf8(media("quadrants.webm"))).toLocalFile());
        QVERIFY(cut.open() && whole.open(QIODevice::ReadOnly));
        cut.write(whole.read(100));
        cut.flush();
        gst_init(nullptr, nullptr);
        const ObjectRef<GstElement> pipeline(
            gst_parse_launch("filesrc name=file ! matroskademux name=demuxer", nullptr));
        const ObjectRef<GstElement> file(gst_bin_get_by_name(GST_BIN(pipeline.get()), "file"));
        const ObjectRef<GstBus> bus(gst_element_get_bus(pipeline.get()));
        g_object_set(file.get(), "location", cut.fileName().toUtf8().constData(), nullptr);
        const auto errorFrom = [&](const GstElement *element) {
            GstMessage *const error = gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR);
            const bool found = error && GST_MESSAGE_SRC(error) == GST_OBJECT(element);
            if (error)
                gst_message_unref(error);
            return found;
        };
        const ObjectRef<GstElement> demuxer(
            gst_bin_get_by_name(GST_BIN(pipeline.get()), "demuxer"));
        gst_element_set_state(pipeline.get(), GST_STATE_PAUSED);
        await("the demuxer's error", [&] { return errorFrom(demuxer.get()); });
        await("the lost error", [&] {
            Quirks::prerollTimedOut(pipeline.get());
            return errorFrom(pipeline.get());
        });
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    }
};

PLAYER_TEST_MAIN(QuirksTest)
#include "quirks_test.moc"
