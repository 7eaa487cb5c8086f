#include "pipeline/Relay.h"

#include <QtCore/QPointer>

#include <utility>

namespace
{

constexpr const char *propertyNames[] = {
    "errorText",        "buffering", "seekable", "live",     "videoSize",  "pixelAspectRatio",
    "imageOrientation", "hasVideo",  "hasAudio", "metaData", "endOfMedia",
};

constexpr QLatin1String buffering("buffering");
constexpr QLatin1String errorText("errorText");
constexpr QLatin1String seekable("seekable");

} // namespace

void Relay::close()
{
    const Guard guard(m_mutex);
    m_view = nullptr;
}

void Relay::reset()
{
    supply.mayPause = false;
    supply.percent = 100;
    supply.failed = false;
    supply.held = false;
    ++supply.run;
    m_errorsIgnored = false;
    m_told = Fault::None;
}

void Relay::follow(const GstElement *media, bool fromNetwork)
{
    const Guard guard(m_mutex);
    reset();
    supply.fromNetwork = fromNetwork;
    supply.takesRanges = true;
    m_media = media;
    m_refused = false;
    m_seekRefused = false;
    apply([](QVariantMap &values) { values.clear(); });
}

void Relay::beginRun()
{
    const Guard guard(m_mutex);
    reset();
    apply([](QVariantMap &values) { values.remove(buffering); });
}

void Relay::refuse(const QString &why)
{
    const Guard guard(m_mutex);
    m_refused = true;
    apply([&why](QVariantMap &values) { values[errorText] = why; });
}

void Relay::accept()
{
    const Guard guard(m_mutex);
    if (std::exchange(m_refused, false))
        apply([](QVariantMap &values) { values.remove(errorText); });
}

void Relay::setErrorsIgnored(bool ignored)
{
    const Guard guard(m_mutex);
    m_errorsIgnored = ignored;
}

void Relay::dropOldError()
{
    const Guard guard(m_mutex);
    if (m_told == Fault::None && !m_refused && !m_seekRefused)
        apply([](QVariantMap &values) { values.remove(errorText); });
}

void Relay::report(const GstElement *media, Fault fault, const QString &text)
{
    const Guard guard(m_mutex);
    if (media != m_media || m_errorsIgnored)
        return;
    const bool isNews = fault > m_told;
    if (isNews) {
        m_told = fault;
        m_refused = false;
    }
    supply.failed = supply.failed || fault != Fault::Missing;
    apply([&](QVariantMap &values) {
        if (isNews)
            values[errorText] = text;
        if (supply.failed)
            values.remove(buffering);
    });
}

void Relay::sought(const GstElement *media, bool taken)
{
    const Guard guard(m_mutex);
    if (media != m_media)
        return;
    m_seekRefused = !taken;
    if (taken) {
        m_told = Fault::None; // it may have left the fault behind
        supply.failed = false;
        return;
    }
    apply([](QVariantMap &values) {
        values[seekable] = false;
        values[errorText] = QStringLiteral("The source does not allow seeking.");
    });
}

void Relay::change(const GstElement *media, const Edit &edit)
{
    const Guard guard(m_mutex);
    if (media != m_media || !media)
        return;
    apply([&, seekRefused = m_seekRefused](QVariantMap &values) {
        edit(values);
        if (seekRefused || !supply.takesRanges)
            values[seekable] = false; // whatever the source says of itself
    });
}

void Relay::apply(const Edit &edit)
{
    const QVariantMap before = m_values;
    edit(m_values);
    if (before == m_values || !m_view || std::exchange(m_onItsWay, true))
        return;
    QMetaObject::invokeMethod(
        m_view, [self = sharedFromThis()] { self->show(); }, Qt::QueuedConnection);
}

QVariant Relay::value(const char *name)
{
    const Guard guard(m_mutex);
    return m_values.value(QLatin1String(name));
}

// Each value is taken when its turn comes: the host's event filters run in here, and may let the
// event loop run or delete the view.
void Relay::show()
{
    QPointer<QObject> view;
    {
        const Guard guard(m_mutex);
        view = m_view;
        m_onItsWay = false;
    }
    for (const char *name : propertyNames) {
        if (!view)
            return;
        const QVariant now = value(name);
        if (view->property(name) != now)
            view->setProperty(name, now);
    }
}
