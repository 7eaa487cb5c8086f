#include "tests/fixture.h"
#include "tests/mediaFiles.h"

// Every common kind of file from its first frame to its end and round again. The whole table runs
// where MEDIA_WHOLE is set, else the quick third of it.

namespace
{

constexpr double second = 1e9;

bool inWholeSeconds(qint64 time, double from, double to)
{
    return double(time) >= from * second && double(time) <= to * second;
}

/// Listens at the entry of a player's audio sink.
class Sound
{
public:
    explicit Sound(Host &host)
        : m_entry(gst_element_get_static_pad(host.view()->audioSink, "sink"))
        , m_probe(gst_pad_add_probe(m_entry, GST_PAD_PROBE_TYPE_BUFFER, onBuffer, this, nullptr))
    {
    }

    ~Sound()
    {
        gst_pad_remove_probe(m_entry, m_probe);
        gst_object_unref(m_entry);
    }

    bool heard() const { return m_heard; }

private:
    Q_DISABLE_COPY_MOVE(Sound)

    static GstPadProbeReturn onBuffer(GstPad *, GstPadProbeInfo *info, gpointer data)
    {
        GstMapInfo map;
        if (gst_buffer_map(GST_PAD_PROBE_INFO_BUFFER(info), &map, GST_MAP_READ)) {
            const guint8 *const start = map.data, *const end = start + map.size;
            if (std::adjacent_find(start, end, std::not_equal_to<>()) != end)
                static_cast<Sound *>(data)->m_heard = true;
            gst_buffer_unmap(GST_PAD_PROBE_INFO_BUFFER(info), &map);
        }
        return GST_PAD_PROBE_OK;
    }

    GstPad *const m_entry;
    std::atomic_bool m_heard = false;
    const gulong m_probe;
};

} // namespace

class MediaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plays_data();
    void plays();
    void names_data();
    void names();
    void cleanupTestCase();

private:
    void playToTheEnd(Host &host, const MediaFile &file);

    QStringList table; // what came out
};

void MediaTest::plays_data()
{
    QTest::addColumn<int>("row");
    const bool whole = qEnvironmentVariableIsSet("MEDIA_WHOLE");
    for (int row = 0; row < mediaFiles.size(); ++row) {
        if (whole || mediaFiles[row].quick)
            QTest::newRow(mediaFiles[row].name) << row;
    }
}

void MediaTest::plays()
{
    QFETCH(int, row);
    const MediaFile &file = mediaFiles[row];
    Host host(row % 2 ? Host::Quick : Host::Widget);
    host.open({}); // starts GStreamer
    bool skip = false;
    if (const QByteArray why = makeMediaFile(file, skip); !why.isEmpty()) {
        table += QStringLiteral("%1 %2").arg(QLatin1String(file.name), -20).arg(QLatin1String(why));
        if (skip)
            QSKIP(why);
        QFAIL(why);
    }

    QCOMPARE(host.load(media(file.name)), complete);
    if (host.view()->videoSink)
        AWAIT_EQUAL(host.overlay(), QString());
    AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
    AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
    if (file.picture)
        AWAIT_EQUAL(host.picture(), QByteArray("RGBW"));
    const auto isRight = [&] {
        const double length = file.indexed ? file.seconds : 0;
        return inWholeSeconds(host.duration(), length - 0.3, length + 0.3);
    };
    const bool known = QTest::qWaitFor(isRight, patience);
    const double duration = double(host.duration()) / second;
    QVERIFY2(known, QByteArray::number(duration));
    if (!file.firstFrameOnly)
        playToTheEnd(host, file);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(host.record.error, std::int8_t(0));
    table += QStringLiteral("%1 %2 s").arg(QLatin1String(file.name), -20).arg(duration, 8, 'f', 3);
}

void MediaTest::playToTheEnd(Host &host, const MediaFile &file)
{
    const Sound sound(host);
    const std::uint32_t run = loadRelaxed(host.view()->generation);
    QCOMPARE(host.play(GST_STATE_PLAYING), complete);
    if (file.seconds > 1) {
        AWAIT(inWholeSeconds(host.position(), 0.2, file.seconds));
        for (const double target : {file.seconds / 2, file.endingFrom}) {
            if (target == 0 || !file.indexed)
                continue;
            QCOMPARE(host.play(GST_STATE_PAUSED), complete);
            host.record.seekPosition = qint64(target * second);
            QCOMPARE(host.run(MediaPlayerCommandSeek), complete);
            const auto near = [&] {
                return inWholeSeconds(host.position(), target - file.seekSlack, target + 0.3);
            };
            QVERIFY2(QTest::qWaitFor(near, patience),
                     QByteArray::number(double(host.position()) / second));
            AWAIT_EQUAL(host.state(), int(GST_STATE_PAUSED));
            QCOMPARE(host.play(GST_STATE_PLAYING), complete);
        }
    }
    // An end goes through READY and NULL and counts as two changes more.
    const auto rewound = [&] {
        return loadRelaxed(host.view()->generation) > run + 1 && host.state() == GST_STATE_PAUSED
            && inWholeSeconds(host.position(), 0, 0.3);
    };
    AWAIT(rewound());
    AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
    QCOMPARE(sound.heard(), file.sound);
    if (file.picture)
        AWAIT_EQUAL(host.picture(), QByteArray("RGBW"));

    QCOMPARE(host.play(GST_STATE_PLAYING), complete);
    if (file.seconds > 1)
        AWAIT(inWholeSeconds(host.position(), 0.2, file.seconds));
}

void MediaTest::names_data()
{
    QTest::addColumn<QString>("name");
    const auto row = [](const char *name) { QTest::newRow(name) << QString::fromUtf8(name); };
    row("UPPER.MP4");
    row("with two spaces.mp4");
    row("Käse Öl ß.mp4");
    row("100%41 ?#&=+.mp4");
    row("a name as long as fits ");
}

void MediaTest::names()
{
    QFETCH(QString, name);
    bool skip = false;
    QCOMPARE(makeMediaFile(mediaFiles.first(), skip), QByteArray());
    const QTemporaryDir folder(QStringLiteral("/tmp/names-XXXXXX"));
    const auto uriOf = [&] {
        return QUrl::fromLocalFile(folder.filePath(name)).toEncoded(QUrl::FullyEncoded);
    };
    if (!name.endsWith(QLatin1String("mp4"), Qt::CaseInsensitive)) {
        name += QString(80 - uriOf().size() - 4, QLatin1Char('x')) + QStringLiteral(".mp4");
        QCOMPARE(uriOf().size(), 80);
    }
    QVERIFY(QFile::link(QUrl(QString::fromLatin1(media("h264-aac.mp4"))).toLocalFile(),
                        folder.filePath(name)));
    Host host(Host::Widget);
    host.open({});
    QCOMPARE(host.load(uriOf()), complete);
    AWAIT_EQUAL(host.picture(), QByteArray("RGBW"));
    AWAIT_EQUAL(host.pipelineStates(), QList<int> {GST_STATE_PAUSED});
}

void MediaTest::cleanupTestCase()
{
    qInfo().noquote() << QLatin1Char('\n') + table.join(QLatin1Char('\n'));
}

PLAYER_TEST_MAIN(MediaTest)
#include "media_test.moc"
