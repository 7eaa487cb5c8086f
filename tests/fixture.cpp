#include "tests/fixture.h"

#include <QtQuick/QQuickWindow>
#include <QtWidgets/QApplication>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <thread>

namespace
{

constexpr std::size_t pageSize = 4096;
constexpr char stray = '\xa5';
constexpr std::pair<int, int> strayBytes[] = {{4, 4},   {20, 4},  {139, 1}, {144, 4},
                                              {149, 1}, {158, 2}, {180, 4}};

MediaPlayerParams *mapRecord()
{
    void *pages =
        mmap(nullptr, 2 * pageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    char *const end = static_cast<char *>(pages) + pageSize;
    if (pages == MAP_FAILED || mprotect(end, pageSize, PROT_NONE))
        qFatal("no memory for a record");
    return reinterpret_cast<MediaPlayerParams *>(end) - 1;
}

// Everything but the notes of Qt's own GL contexts: the item drops one unreleased whenever it is
// taken out of its window and put back.
constexpr char tracedForLeaks[] =
    "leaks(filters=\"GstElement,GstPad,GstPadTemplate,GstBus,GstTask,GstClock,GstBufferPool,"
    "GstStream,GstStreamCollection,GstCaps,GstBuffer,GstBufferList,GstEvent,GstMessage,GstQuery,"
    "GstSample,GstMemory,GstTagList,GstToc,GstGLContextGLX,GstGLWindow\")";

/// Each part of a colour is next to nothing or all: videos come back a little off.
char letterOf(QRgb colour)
{
    int parts = 0;
    for (const int part : {qRed(colour), qGreen(colour), qBlue(colour)}) {
        if (part > 60 && part < 195)
            return '?';
        parts = 2 * parts + int(part >= 195);
    }
    return "?BG?RMYW"[parts];
}

} // namespace

Host::Host(Kind hostKind, QSize size, Start start) : kind(hostKind), record(*mapRecord())
{
    for (const auto &[offset, length] : strayBytes)
        std::memset(reinterpret_cast<char *>(&record) + offset, stray, std::size_t(length));
    record.volume = 1;
    record.opacity = 1;

    if (kind == Widget) {
        widget = std::make_unique<QWidget>();
        widget->setPalette(QPalette(Qt::magenta, Qt::magenta));
        widget->resize(size);
    } else {
        window = std::make_unique<QQuickWindow>();
        window->setColor(Qt::magenta);
        window->resize(size);
    }
    setShown(start == Shown);
}

Host::~Host()
{
    widget.reset();
    window.reset();
    delete view();
    giveBackRecord();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool Host::giveBackRecord()
{
    if (view())
        return false;
    if (!std::exchange(m_recordGone, true))
        munmap(reinterpret_cast<char *>(&record + 1) - pageSize, 2 * pageSize);
    return true;
}

void Host::setShown(bool shown)
{
    if (widget)
        widget->setVisible(shown);
    else
        window->setVisible(shown);
}

void Host::create()
{
    if (kind == Widget) {
        control = Create(widget.get(), 0, 0, widget->width() - 1, widget->height() - 1);
        widget->findChildren<QQuickWidget *>().constLast()->setClearColor(Qt::magenta);
    } else {
        if (item)
            delete item->parentItem();
        auto *frame = new QQuickItem(window->contentItem());
        item = new QQuickItem(frame);
        item->setParent(frame);
        item->setSize(window->size());
        control = CreateQML(window.get(), item, nullptr, 0, 0, 0, 0);
    }
}

void Host::registerRecord(MediaPlayerParams &params)
{
    char key[] = "RegisterParameter";
    control->SysNativeControlSetSettings(key, &params);
}

void Host::open(const QByteArray &uri)
{
    setFileName(uri + '\0');
    create();
    registerRecord();
    control->SysNativeControlShow(1);
}

void Host::raise(int command)
{
    storeRelaxed(record.command, command);
    for (auto *byte : {&record.done, &record.error, &record.busy})
        storeRelaxed(*byte, 2);
    storeRelease(record.execute, 1);
}

QByteArray Host::run(int command)
{
    raise(command);
    if (!QTest::qWaitFor([this] { return loadAcquire(record.execute) == 0; }, patience))
        return "no answer to command " + QByteArray::number(command);
    QByteArray answer;
    for (auto *byte : {&record.done, &record.error, &record.busy})
        answer += QByteArray::number(loadRelaxed(*byte));
    return answer;
}

QByteArray Host::load(const QByteArray &uri)
{
    setFileName(uri + '\0');
    return run(MediaPlayerCommandLoad);
}

QByteArray Host::play(int wanted)
{
    record.playState = wanted;
    return run(MediaPlayerCommandPlayState);
}

void Host::setFileName(const QByteArray &text)
{
    std::memcpy(record.fileName, text.constData(),
                std::min(std::size_t(text.size()), sizeof record.fileName));
}

QQuickItem *Host::place()
{
    return item ? item.data() : widget->findChildren<QQuickWidget *>().constLast()->rootObject();
}

QQuickItem *Host::videoItem()
{
    return view()->videoObject->findChild<QQuickItem *>(QStringLiteral("videoItem"));
}

bool Host::strayBytesKept() const
{
    return std::all_of(std::begin(strayBytes), std::end(strayBytes), [this](const auto &range) {
        const char *start = reinterpret_cast<const char *>(&record) + range.first;
        return std::count(start, start + range.second, stray) == range.second;
    });
}

QByteArray Host::picture()
{
    QWindow *shown = window ? window.get() : widget->windowHandle();
    const QImage image = shown->screen()->grabWindow(shown->winId()).toImage();
    QByteArray letters;
    for (const int y : {1, 3}) {
        for (const int x : {1, 3})
            letters += letterOf(image.pixel(x * image.width() / 4, y * image.height() / 4));
    }
    return letters;
}

QString Host::overlay()
{
    const auto items = view()->videoObject->findChildren<QQuickItem *>();
    for (const QQuickItem *candidate : items) {
        if (candidate->isVisible() && candidate->property("text").isValid())
            return candidate->property("text").toString();
    }
    return {};
}

QList<int> Host::pipelineStates()
{
    QList<int> states;
    for (const auto &built : std::as_const(view()->pipelineCache)) {
        GstState state = GST_STATE_VOID_PENDING;
        gst_element_get_state(built->pipeline, &state, nullptr, 0);
        states.insert(built->pipeline == view()->pipeline ? 0 : states.size(), state);
    }
    return states;
}

void addKinds()
{
    QTest::addColumn<Host::Kind>("kind");
    QTest::newRow("widget") << Host::Widget;
    QTest::newRow("quick") << Host::Quick;
}

QByteArray media(const char *name)
{
    const QByteArray folder = qgetenv("MEDIA_DIR");
    if (folder.isEmpty())
        qFatal("MEDIA_DIR is not set: run the tests through ./test");
    return "file://" + folder + '/' + name;
}

std::uint32_t generationOf(MediaPlayerView *view)
{
    const Guard guard(view->lock);
    return view->shared.generation;
}

qint64 entriesOf(const char *folder)
{
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

bool blockUntil(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        std::this_thread::yield();
    }
    return true;
}

bool blockForOnePass(Host &host)
{
    // The first publication may belong to a pass that had begun before.
    for (int published = 0; published < 2; ++published) {
        storeRelaxed(host.record.duration, -1);
        if (!blockUntil([&host] { return host.duration() != -1; }))
            return false;
    }
    return true;
}

Captured::Captured(int stream) : m_stream(stream), m_before(dup(stream))
{
    std::fflush(nullptr);
    if (!m_file.open() || dup2(m_file.handle(), m_stream) < 0)
        qFatal("nowhere to capture the output");
}

Captured::~Captured()
{
    std::fflush(nullptr);
    dup2(m_before, m_stream);
    close(m_before);
}

QByteArray Captured::text()
{
    std::fflush(nullptr);
    m_file.seek(0);
    return m_file.readAll();
}

int runPlayerTest(int argc, char **argv, const std::function<int(int, char **)> &test)
{
    if (!qEnvironmentVariableIsSet("GST_TRACERS"))
        qputenv("GST_TRACERS", tracedForLeaks);
    g_log_set_always_fatal(GLogLevelFlags(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL));
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    int failures = 0;
    {
        QApplication application(argc, argv);
        failures = test(argc, argv);
    }
    // A leak is told by a warning.
    g_log_set_always_fatal(GLogLevelFlags(G_LOG_FATAL_MASK | G_LOG_LEVEL_WARNING));
    if (gst_is_initialized())
        gst_deinit();
    return failures;
}
