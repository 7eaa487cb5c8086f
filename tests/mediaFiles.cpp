#include "tests/mediaFiles.h"

#include <gst/gst.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtGui/QImage>
#include <QtGui/QPainter>

// clang-format off
#define H264 "VIDEO x264enc speed-preset=ultrafast key-int-max=KEY "
#define HEVC "VIDEO x265enc speed-preset=ultrafast key-int-max=KEY ! h265parse "
#define VP8 "VIDEO vp8enc deadline=1 keyframe-max-dist=KEY "
#define VP9 "VIDEO vp9enc deadline=1 cpu-used=8 keyframe-max-dist=KEY "
#define AV1 "VIDEO av1enc cpu-used=8 usage-profile=realtime keyframe-max-dist=KEY ! av1parse "
#define AAC "AUDIO avenc_aac ! aacparse "
#define VORBIS "AUDIO vorbisenc "
#define FREEZE "filesrc location=PICTURE ! pngdec ! imagefreeze num-buffers="
#define RATE " ! videoconvert ! video/x-raw,format=I420,framerate="
#define TEXT "filesrc location=two.srt ! subparse "

const QList<MediaFile> mediaFiles = {
    // Containers and codecs
    {.name = "h264-aac.mp4", .line = H264 "! mp4mux name=m ! FILE " AAC "! m.", .quick = true},
    {.name = "h264-aac.mkv", .line = H264 "! matroskamux name=m ! FILE " AAC "! m."},
    {.name = "h264-mono.mp4", .line = H264 "! mp4mux name=m ! FILE " AAC "! m.", .audio = "rate=48000,channels=1"},
    {.name = "hevc.mp4", .line = HEVC "! mp4mux ! FILE", .sound = false},
    {.name = "hevc-10bit.mp4", .line = HEVC "! mp4mux ! FILE", .quick = true, .sound = false, .video = "format=I420_10LE"},
    {.name = "hevc-10bit-aac.mkv", .line = HEVC "! matroskamux name=m ! FILE " AAC "! m.", .video = "format=I420_10LE"},
    {.name = "vp8-vorbis.webm", .line = VP8 "! webmmux name=m ! FILE " VORBIS "! m.", .quick = true},
    {.name = "vp9-opus.webm", .line = VP9 "! webmmux name=m ! FILE AUDIO opusenc ! m.", .audio = "rate=48000,channels=2"},
    {.name = "vp9-10bit.webm", .line = VP9 "! webmmux ! FILE", .sound = false, .video = "format=I420_10LE"},
    {.name = "vp9-444.webm", .line = VP9 "! webmmux ! FILE", .sound = false, .video = "format=Y444"},
    {.name = "av1.mkv", .line = AV1 "! matroskamux ! FILE", .sound = false, .decoder = "av1dec"},
    {.name = "av1-10bit.mkv", .line = AV1 "! matroskamux ! FILE", .sound = false, .video = "format=I420_10LE",
     .decoder = "av1dec"},
    {.name = "mpeg2-ac3.m2ts", .line = "VIDEO mpeg2enc format=3 max-gop-size=KEY ! mpegvideoparse ! mpegtsmux name=m m2ts-mode=true ! FILE "
     "AUDIO avenc_ac3 ! ac3parse ! m.", .seconds = 8, .fps = 25, .audio = "rate=48000,channels=2", .seekSlack = 3},
    {.name = "mpeg2-mp2.m2ts", .line = "VIDEO mpeg2enc format=3 max-gop-size=KEY ! mpegvideoparse ! mpegtsmux name=m ! FILE "
     "AUDIO twolamemp2enc ! mpegaudioparse ! m.", .seconds = 8, .fps = 25, .audio = "rate=48000,channels=2", .seekSlack = 3},
    {.name = "mpeg4-mp3.avi", .line = "VIDEO avenc_mpeg4 gop-size=KEY ! avimux name=m ! FILE AUDIO lamemp3enc ! mpegaudioparse ! m.",
     .quick = true},
    {.name = "mjpeg-pcm.avi", .line = "VIDEO jpegenc ! avimux name=m ! FILE AUDIO identity ! m.",
     .audio = "rate=44100,channels=2,format=S16LE"},
    {.name = "theora-vorbis.ogv", .line = "VIDEO theoraenc keyframe-force=KEY ! oggmux name=m ! FILE " VORBIS "! m."},
    {.name = "h264-aac.flv", .line = H264 "! h264parse ! flvmux name=m ! FILE " AAC "! m."},
    // Sound alone
    {.name = "tone.mp3", .line = "AUDIO lamemp3enc ! xingmux ! FILE", .quick = true, .picture = false},
    {.name = "tone.m4a", .line = AAC "! mp4mux ! FILE", .picture = false},
    {.name = "tone.aac", .line = AAC "! audio/mpeg,stream-format=adts ! FILE", .picture = false},
    {.name = "tone.ogg", .line = VORBIS "! oggmux ! FILE", .picture = false},
    {.name = "tone.opus", .line = "AUDIO opusenc ! oggmux ! FILE", .picture = false, .audio = "rate=8000,channels=1"},
    {.name = "tone.ac3", .line = "AUDIO avenc_ac3 ! FILE", .picture = false, .indexed = false},
    {.name = "surround.ac3", .line = "AUDIO avenc_ac3 ! FILE", .picture = false,
     .audio = "rate=48000,channels=6,channel-mask=(bitmask)0x3f", .indexed = false},
    {.name = "surround.m4a", .line = AAC "! mp4mux ! FILE", .quick = true, .picture = false,
     .audio = "rate=48000,channels=6,channel-mask=(bitmask)0x3f"},
    {.name = "surround.flac", .line = "AUDIO flacenc ! FILE", .picture = false,
     .audio = "rate=192000,channels=6,channel-mask=(bitmask)0x3f,format=S24LE"},
    {.name = "8bit.wav", .line = "AUDIO wavenc ! FILE", .quick = true, .picture = false, .audio = "rate=8000,channels=1,format=U8"},
    {.name = "16bit.wav", .line = "AUDIO wavenc ! FILE", .picture = false, .audio = "rate=44100,channels=2,format=S16LE"},
    {.name = "24bit.wav", .line = "AUDIO wavenc ! FILE", .picture = false, .audio = "rate=192000,channels=2,format=S24LE"},
    {.name = "32bit.wav", .line = "AUDIO wavenc ! FILE", .picture = false, .audio = "rate=96000,channels=2,format=S32LE"},
    {.name = "float.wav", .line = "AUDIO wavenc ! FILE", .picture = false, .audio = "rate=48000,channels=2,format=F32LE"},
    {.name = "8khz.mp3", .line = "AUDIO lamemp3enc ! xingmux ! FILE", .picture = false, .audio = "rate=8000,channels=1"},
    // Streams
    {.name = "sound-only.mp4", .line = AAC "! mp4mux ! FILE", .quick = true, .picture = false},
    {.name = "languages.mkv", .line = H264 "! matroskamux name=m ! FILE " AAC "! m. " AAC "! m. AUDIO flacenc ! m.", .quick = true},
    {.name = "text-silent.mkv", .line = H264 "! matroskamux name=m ! FILE " TEXT "! m.", .quick = true, .sound = false},
    {.name = "text-first.mkv", .line = TEXT "! matroskamux name=m ! FILE " H264 "! m. " AAC "! m."},
    {.name = "text-between.mkv", .line = H264 "! matroskamux name=m ! FILE " TEXT "! m. " AAC "! m."},
    {.name = "text-last.mp4", .line = H264 "! mp4mux name=m ! FILE " AAC "! m. " TEXT "! m."},
    {.name = "cover.mka", .line = "VIDEO jpegenc ! matroskamux name=m ! FILE " VORBIS "! m.", .quick = true, .picture = false, .fps = 1},
    // Pictures
    {.name = "odd.mp4", .line = "VIDEO x264enc speed-preset=ultrafast key-int-max=KEY ! mp4mux ! FILE", .sound = false,
     .video = "format=Y444", .width = 101, .height = 77},
    {.name = "odd.webm", .line = VP8 "! webmmux ! FILE", .sound = false, .width = 101, .height = 77},
    {.name = "portrait.mp4", .line = H264 "! mp4mux ! FILE", .sound = false, .width = 120, .height = 214},
    {.name = "wide-pixels.mp4", .line = "VIDEO capssetter caps=video/x-raw,pixel-aspect-ratio=16/11 ! x264enc key-int-max=KEY ! "
     "mp4mux ! FILE", .sound = false},
    {.name = "one-frame.mp4", .line = H264 "! mp4mux ! FILE", .quick = true, .sound = false, .seconds = 0.1},
    {.name = "1-a-second.mp4", .line = H264 "! mp4mux ! FILE", .sound = false, .seconds = 4, .fps = 1},
    {.name = "60-a-second.mp4", .line = H264 "! mp4mux ! FILE", .sound = false, .fps = 60},
    {.name = "variable.mkv", .line = "concat name=c ! capssetter caps=video/x-raw,framerate=0/1 ! vp8enc deadline=1 keyframe-max-dist=5"
     " ! matroskamux ! FILE " FREEZE "20" RATE "10/1 ! c. " FREEZE "40" RATE "20/1 ! c.",
     .sound = false, .seconds = 4},
    {.name = "2160p.mp4", .line = H264 "! mp4mux ! FILE", .sound = false, .seconds = 0.5, .width = 3840, .height = 2160,
     .firstFrameOnly = true},
    {.name = "hour.mkv", .line = H264 "! matroskamux name=m ! FILE AUDIO lamemp3enc target=bitrate bitrate=8 ! mpegaudioparse ! m.",
     .seconds = 3600, .fps = 1, .width = 64, .height = 48, .audio = "rate=8000,channels=1", .endingFrom = 3598},
};
// clang-format on

namespace
{

QString folder()
{
    return QFileInfo(QFile::decodeName(qgetenv("MEDIA_DIR"))).canonicalFilePath()
        + QLatin1Char('/');
}

QString quadrants(int width, int height)
{
    const QString name = QStringLiteral("%1x%2.png").arg(width).arg(height);
    QImage image(width, height, QImage::Format_RGB888);
    QPainter painter(&image);
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue, Qt::white};
    for (int i = 0; i < 4; ++i)
        painter.fillRect(i % 2 * width / 2, i / 2 * height / 2, width, height, colours[i]);
    painter.end();
    image.save(folder() + name);
    return name;
}

bool write(const QString &name, const QByteArray &bytes)
{
    QFile file(folder() + name);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray read(const QString &name)
{
    QFile file(folder() + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool exists(const QString &element)
{
    GstElementFactory *const factory = gst_element_factory_find(element.toUtf8().constData());
    if (factory)
        gst_object_unref(factory);
    return factory != nullptr;
}

QString expanded(const MediaFile &file)
{
    const QString audio = QLatin1String(file.audio);
    const int rate =
        audio.section(QLatin1String("rate="), 1).section(QLatin1Char(','), 0, 0).toInt();
    const QString picture = quadrants(file.width, file.height);
    return QString::fromLatin1(file.line)
        .replace(QLatin1String("VIDEO"),
                 QStringLiteral("filesrc location=PICTURE ! pngdec ! imagefreeze num-buffers=%1 ! "
                                "videoconvert ! video/x-raw,%2,framerate=%3/1 !")
                     .arg(std::max(1, int(file.seconds * file.fps)))
                     .arg(QLatin1String(file.video))
                     .arg(int(file.fps)))
        .replace(QLatin1String("AUDIO"),
                 QStringLiteral("audiotestsrc samplesperbuffer=%1 num-buffers=%2 ! audioconvert ! "
                                "audio/x-raw,%3 !")
                     .arg(rate / 10)
                     .arg(int(file.seconds * 10))
                     .arg(audio))
        .replace(QLatin1String("PICTURE"), picture)
        .replace(QLatin1String("KEY"), QString::number(file.fps))
        .replace(QLatin1String("FILE"),
                 QLatin1String("filesink location=") + QLatin1String(file.name));
}

} // namespace

QByteArray makeMediaFile(const MediaFile &file, bool &skip)
{
    write(QStringLiteral("two.srt"),
          "1\n00:00:00,500 --> 00:00:01,000\none\n\n2\n00:00:02,000 --> 00:00:02,500\ntwo\n");
    const QString line = expanded(file);

    skip = true;
    if (file.decoder && !exists(QLatin1String(file.decoder)))
        return QByteArray("no decoder ") + file.decoder;
    for (const QString &step : QString::fromLatin1(file.line).split(QLatin1Char(' '))) {
        if ((step.endsWith(QLatin1String("enc")) || step.contains(QLatin1String("enc_")))
            && !exists(step))
            return "no encoder " + step.toLatin1();
    }
    skip = false;

    // Beside each file lies what it was made by.
    const QString note = QLatin1String(file.name) + QLatin1String(".by");
    if (read(note) == line.toUtf8())
        return {};
    write(note, {});
    QProcess process;
    process.setWorkingDirectory(folder());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("GST_TRACERS"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("gst-launch-1.0"),
                  QStringList(QStringLiteral("-q")) + QProcess::splitCommand(line));
    const bool made = process.waitForFinished(300'000) && process.exitCode() == 0;
    const QByteArray said = process.readAll();
    // An encoder that is there, but was built without this format.
    skip = said.contains("can't handle caps");
    if (!made || skip)
        return "cannot be made: " + said;
    write(note, line.toUtf8());
    return {};
}
