#include "tests/mediaFiles.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtGui/QImage>

// clang-format off
// What stands in capitals in the text is filled in from the shape.
#define AND " ! m. "
#define FREEZE(frames, fps) "filesrc location=PICTURE ! pngdec ! imagefreeze num-buffers=" frames \
    " ! videoconvert ! video/x-raw,format=FORMAT,framerate=" fps "/1 ! "
#define VIDEO FREEZE("FRAMES", "FPS")
#define H264 VIDEO "x264enc speed-preset=ultrafast key-int-max=FPS"
#define HEVC VIDEO "x265enc speed-preset=ultrafast key-int-max=FPS ! h265parse"
#define VP8ENC "vp8enc deadline=1 keyframe-max-dist=FPS"
#define VP8 VIDEO VP8ENC
#define VP9 VIDEO "vp9enc deadline=1 cpu-used=8 keyframe-max-dist=FPS"
#define MPEG2 VIDEO "mpeg2enc format=3 max-gop-size=FPS ! mpegvideoparse"
#define AUDIO "audiotestsrc samplesperbuffer=TENTH num-buffers=TENTHS ! audioconvert ! audio/x-raw,rate=RATE,SOUND"
#define AAC AUDIO " ! avenc_aac ! aacparse"
#define AC3 AUDIO " ! avenc_ac3 ! ac3parse"
#define FLAC AUDIO " ! flacenc"
#define MP3 AUDIO " ! lamemp3enc"
#define OPUS AUDIO " ! opusenc"
#define VORBIS AUDIO " ! vorbisenc"
#define TEXT "fdsrc ! subparse"
#define SURROUND "channels=6,channel-mask=(bitmask)0x3f"

const QList<MediaFile> mediaFiles = {
    // Containers and codecs
    {"h264-aac.mp4", "mp4mux", H264 AND AAC, {.quick = true, .toDamage = true}},
    {"h264-mono.mkv", "matroskamux", H264 AND AAC, {.rate = 48000, .sound = "channels=1"}},
    {"hevc.mp4", "mp4mux", HEVC},
    {"hevc-10bit-aac.mkv", "matroskamux", HEVC AND AAC, {.quick = true, .format = "I420_10LE"}},
    {"vp8-vorbis.webm", "webmmux", VP8 AND VORBIS, {.quick = true, .toDamage = true}},
    {"vp9-opus.webm", "webmmux", VP9 AND OPUS, {.rate = 48000}},
    {"vp9-10bit.webm", "webmmux", VP9, {.format = "I420_10LE"}},
    {"vp9-444.webm", "webmmux", VP9, {.format = "Y444"}},
    {"av1.mkv", "matroskamux",
     VIDEO "av1enc cpu-used=8 usage-profile=realtime keyframe-max-dist=FPS ! av1parse"},
    {"mpeg2-ac3.m2ts", "mpegtsmux m2ts-mode=true", MPEG2 AND AC3,
     {.toDamage = true, .seconds = 8, .fps = 25, .rate = 48000, .seekSlack = 3}},
    {"mpeg2-mp2.m2ts", "mpegtsmux", MPEG2 AND AUDIO " ! twolamemp2enc ! mpegaudioparse",
     {.seconds = 8, .fps = 25, .rate = 48000, .seekSlack = 3}},
    // Never damaged: avidemux of GStreamer 1.22 writes a critical of its own for one that is cut
    // (gst_flow_combiner_update_pad_flow without a pad).
    {"mpeg4-mp3.avi", "avimux", VIDEO "avenc_mpeg4 gop-size=FPS" AND MP3 " ! mpegaudioparse", {.quick = true}},
    {"mjpeg-pcm.avi", "avimux", VIDEO "jpegenc" AND AUDIO, {.sound = "channels=2,format=S16LE"}},
    {"theora-vorbis.ogv", "oggmux", VIDEO "theoraenc keyframe-force=FPS" AND VORBIS, {.toDamage = true}},
    {"h264-aac.flv", "flvmux", H264 " ! h264parse" AND AAC},
    // Sound alone
    {"tone.mp3", "xingmux", MP3, {.quick = true, .toDamage = true}},
    {"SIX.M4A", "mp4mux", AAC, {.quick = true, .rate = 48000, .sound = SURROUND}},
    {"tone.aac", "capsfilter caps=audio/mpeg,stream-format=adts", AAC},
    {"tone.ogg", "oggmux", VORBIS},
    {"tone.opus", "oggmux", OPUS, {.rate = 8000, .sound = "channels=1"}},
    {"surround.ac3", "identity", AC3, {.rate = 48000, .sound = SURROUND, .indexed = false}},
    {"surround.flac", "identity", FLAC, {.rate = 192000, .sound = SURROUND ",format=S24LE"}},
    {"8bit 4%41?#&=+.wav", "wavenc", AUDIO, {.quick = true, .rate = 8000, .sound = "channels=1,format=U8"}},
    {"16bit.wav", "wavenc", AUDIO, {.sound = "channels=2,format=S16LE"}},
    {"float.wav", "wavenc", AUDIO, {.rate = 48000, .sound = "channels=2,format=F32LE"}},
    // Streams
    {"sound-only.mp4", "mp4mux", AAC, {.quick = true}},
    {"languages.mkv", "matroskamux", H264 AND AAC AND AAC AND FLAC, {.quick = true}},
    {"Käse Öl ß.mkv", "matroskamux", H264 AND TEXT, {.quick = true}},
    {"text-first.mkv", "matroskamux", TEXT AND H264 AND AAC},
    {"text-last.mp4", "mp4mux", H264 AND AAC AND TEXT},
    {"cover.mka", "matroskamux", "videotestsrc num-buffers=3 ! video/x-raw,framerate=1/1 ! jpegenc" AND VORBIS,
     {.quick = true}},
    // Pictures
    {"odd.mp4", "mp4mux", H264, {.format = "Y444", .width = 101, .height = 77}},
    {"odd.webm", "webmmux", VP8, {.width = 101, .height = 77}},
    {"wide-pixels.mp4", "mp4mux",
     VIDEO "capssetter caps=video/x-raw,pixel-aspect-ratio=16/11 ! x264enc key-int-max=FPS"},
    {"one frame only.mp4", "mp4mux", H264, {.quick = true, .seconds = 0.1}},
    {"60-a-second.mp4", "mp4mux", H264, {.fps = 60}},
    {"variable.mkv", "matroskamux", FREEZE("20", "10") "c. " FREEZE("40", "20") "c. "
      "concat name=c ! capssetter caps=video/x-raw,framerate=0/1 ! " VP8ENC, {.seconds = 4}},
    {"2160p.mp4", "mp4mux", H264, {.seconds = 0.1, .width = 3840, .height = 2160}},
    {"hour.mkv", "matroskamux", H264 AND MP3 " target=bitrate bitrate=8 ! mpegaudioparse",
     {.seconds = 3600, .fps = 1, .width = 64, .height = 48, .rate = 8000, .sound = "channels=1"}},
};
// clang-format on

QByteArray makeMediaFile(const MediaFile &file)
{
    const MediaShape &shape = file.shape;
    const QString folder = QFile::decodeName(qgetenv("MEDIA_DIR")) + u'/';
    const QString picture = QStringLiteral("%1x%2.png").arg(shape.width).arg(shape.height);
    constexpr uchar corners[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
    QImage(corners, 2, 2, 6, QImage::Format_RGB888)
        .scaled(shape.width, shape.height)
        .save(folder + picture);

    auto line =
        QStringLiteral("-u GST_TRACERS gst-launch-1.0 -q %1 name=m ! filesink \"location=%2\""
                       " %3 ! m.")
            .arg(QLatin1String(file.muxer), QString::fromUtf8(file.name),
                 QLatin1String(file.streams));
    for (const auto &[text, value] : std::initializer_list<std::pair<const char *, QString>> {
             {"PICTURE", picture},
             {"FORMAT", QLatin1String(shape.format)},
             {"FRAMES", QString::number(qMax(1, int(shape.seconds * shape.fps)))},
             {"FPS", QString::number(shape.fps)},
             {"RATE", QString::number(shape.rate)},
             {"SOUND", QLatin1String(shape.sound)},
             {"TENTHS", QString::number(int(shape.seconds * 10))},
             {"TENTH", QString::number(shape.rate / 10)}})
        line.replace(QLatin1String(text), value);

    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("env"), QProcess::splitCommand(line));
    process.write("1\n00:00:00,500 --> 00:00:01,000\none\n\n"
                  "2\n00:00:02,000 --> 00:00:02,500\ntwo\n"); // the texts
    process.closeWriteChannel();
    const bool made = process.waitForFinished(300'000) && process.exitCode() == 0;
    const QByteArray said = process.readAll();
    if (said.contains("can't handle caps") || said.contains("no element"))
        return noEncoder + said;
    return made ? QByteArray() : "cannot be made: " + said;
}
