#ifndef MEMORY_H
#define MEMORY_H

#include <QtCore/QSettings>
#include <QtCore/QSize>
#include <QtCore/QUrl>

/// What is remembered from one run to the next, in the user's settings.
class Memory
{
public:
    QSize windowSize() const
    {
        return settings.value(QStringLiteral("window/size"), QSize(960, 640)).toSize();
    }
    void setWindowSize(QSize size) { settings.setValue(QStringLiteral("window/size"), size); }
    bool isMaximized() const { return flag("window/maximized"); }
    void setMaximized(bool on) { settings.setValue(QStringLiteral("window/maximized"), on); }

    double volume() const { return settings.value(QStringLiteral("sound/volume"), 1.0).toDouble(); }
    void setVolume(double volume) { settings.setValue(QStringLiteral("sound/volume"), volume); }
    bool isMuted() const { return flag("sound/muted"); }
    void setMuted(bool on) { settings.setValue(QStringLiteral("sound/muted"), on); }

    bool showsDeveloper() const { return flag("panels/developer"); }
    void setShowsDeveloper(bool on) { settings.setValue(QStringLiteral("panels/developer"), on); }

    QStringList recent() const; ///< addresses, the last one first
    void addRecent(const QUrl &media);

    /// Where a medium was left, in milliseconds; 0: begin at its start.
    qint64 placeIn(const QUrl &media) const;
    void leave(const QUrl &media, qint64 position, qint64 duration);

private:
    bool flag(const char *key) const { return settings.value(QLatin1String(key)).toBool(); }

    QSettings settings {QStringLiteral("mediaplayer"), QStringLiteral("host")};
};

#endif
