#include "tests/interleaving.h"

#include <thread>

// No thread waits for what another waits for.

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Plays a sound to its end whose source then has nothing more to give, and comes back when the
/// update thread waits for the sound to preroll again.
void openAndRewind(Host &host)
{
    host.open("appsrc://once.flac");
    GstElement *source = nullptr;
    g_object_get(host.view()->source, "source", &source, nullptr);
    const ObjectRef<GstElement> feed(source);
    QFile file(QUrl(QString::fromUtf8(media("tone.flac"))).toLocalFile());
    QVERIFY(feed && file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    GstBuffer *const buffer = gst_buffer_new_memdup(bytes.constData(), std::size_t(bytes.size()));
    GstFlowReturn result = GST_FLOW_ERROR;
    g_signal_emit_by_name(feed.get(), "push-buffer", buffer, &result);
    gst_buffer_unref(buffer);
    g_signal_emit_by_name(feed.get(), "end-of-stream", &result);
    AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
    gst_pipeline_use_clock(GST_PIPELINE(host.view()->pipeline), nullptr); // as fast as it can
    host.play(GST_STATE_PLAYING);
    QVERIFY(blockUntil([pipeline = host.view()->pipeline] {
        GstState now = GST_STATE_NULL, next = GST_STATE_NULL;
        gst_element_get_state(pipeline, &now, &next, 0);
        return now == GST_STATE_READY && next == GST_STATE_PAUSED;
    }));
}

} // namespace

class WaitingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void publicationGoesOnWhileTheGuiThreadWaits()
    {
        Host host(Host::Quick);
        host.open("appsrc://never.wav");
        std::atomic<bool> over = false;
        Clock::duration longest {};
        std::thread watch([&] {
            for (auto last = Clock::now(); !over; last = Clock::now()) {
                storeRelaxed(host.record.duration, -7);
                blockUntil([&] { return over || host.duration() != -7; });
                longest = std::max(longest, Clock::now() - last);
            }
        });
        const auto before = Clock::now();
        const QByteArray answer = host.play(GST_STATE_NULL);
        over = true;
        watch.join();
        QCOMPARE(answer, complete);
        QVERIFY(Clock::now() - before >= milliseconds(1000)); // it has waited
        QVERIFY2(longest < milliseconds(600),
                 QByteArray::number(qint64(longest / milliseconds(1))) + " ms");
    }

    void aRewindHoldsNobodyUp_data()
    {
        using Step = void (*)(Host &);
        QTest::addColumn<Step>("step");
        const std::pair<const char *, Step> rows[] = {
            {"report", [](Host &host) { runAtOnce(host, MediaPlayerCommandVolume); }},
            {"parking", [](Host &host) { host.control->saveObject(); }},
            {"control's end", [](Host &host) { host.destroyControl(); }},
            {"view's end", [](Host &host) { delete host.view(); }},
            {"another file", [](Host &host) { loadAtOnce(host, "tone.flac"); }},
        };
        for (const auto &[name, step] : rows)
            QTest::newRow(name) << step;
    }
    void aRewindHoldsNobodyUp()
    {
        using Step = void (*)(Host &);
        QFETCH(Step, step);
        Host host(Host::Widget);
        openAndRewind(host);
        const auto before = Clock::now();
        step(host);
        const auto waited = (Clock::now() - before) / milliseconds(1);
        QVERIFY2(waited < 500, QByteArray::number(qint64(waited)) + " ms");
    }
};

PLAYER_TEST_MAIN(WaitingTest)
#include "waiting_test.moc"
