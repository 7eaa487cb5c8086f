#include "tests/mediaFiles.h"

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtGui/QImage>

#include <algorithm>
#include <cstring>

// clang-format off
// What stands in capitals in the text is filled in from the shape.
#define FREEZE(frames, fps) "filesrc location=PICTURE ! pngdec ! imagefreeze num-buffers=" frames \
    " ! videoconvert ! video/x-raw,format=FORMAT,framerate=" fps "/1 ! "
#define VIDEO FREEZE("FRAMES", "FPS")
#define H264 VIDEO "x264enc speed-preset=ultrafast key-int-max=FPS"
#define HEVC VIDEO "x265enc speed-preset=ultrafast key-int-max=FPS ! h265parse"
#define VP8ENC "vp8enc deadline=1 keyframe-max-dist=FPS"
#define VP8 VIDEO VP8ENC
#define VP9 VIDEO "vp9enc deadline=1 cpu-used=8 keyframe-max-dist=FPS"
#define AV1 VIDEO "av1enc cpu-used=8 usage-profile=realtime keyframe-max-dist=FPS ! av1parse"
#define MPEG2 VIDEO "mpeg2enc format=3 max-gop-size=FPS ! mpegvideoparse"
#define AUDIO "audiotestsrc samplesperbuffer=TENTH num-buffers=TENTHS ! audioconvert ! audio/x-raw,rate=RATE,SOUND"
#define AAC AUDIO " ! avenc_aac ! aacparse"
#define AC3 AUDIO " ! avenc_ac3 ! ac3parse"
#define FLAC AUDIO " ! flacenc"
#define MP3 AUDIO " ! lamemp3enc"
#define OPUS AUDIO " ! opusenc"
#define VORBIS AUDIO " ! vorbisenc"
#define TEXT "filesrc location=two.srt ! subparse"
#define SURROUND "channels=6,channel-mask=(bitmask)0x3f"

const QList<MediaFile> mediaFiles = {
    // Containers and codecs
    {"h264-aac.mp4", "mp4mux", {H264, AAC}, {.quick = true, .toDamage = true}},
    {"h264-aac.mkv", "matroskamux", {H264, AAC}},
    {"h264-mono.mp4", "mp4mux", {H264, AAC}, {.rate = 48000, .sound = "channels=1"}},
    {"hevc.mp4", "mp4mux", {HEVC}},
    {"hevc-10bit.mp4", "mp4mux", {HEVC}, {.quick = true, .format = "I420_10LE"}},
    {"hevc-10bit-aac.mkv", "matroskamux", {HEVC, AAC}, {.format = "I420_10LE"}},
    {"vp8-vorbis.webm", "webmmux", {VP8, VORBIS}, {.quick = true, .toDamage = true}},
    {"vp9-opus.webm", "webmmux", {VP9, OPUS}, {.rate = 48000}},
    {"vp9-10bit.webm", "webmmux", {VP9}, {.format = "I420_10LE"}},
    {"vp9-444.webm", "webmmux", {VP9}, {.format = "Y444"}},
    {"av1.mkv", "matroskamux", {AV1}},
    {"av1-10bit.mkv", "matroskamux", {AV1}, {.format = "I420_10LE"}},
    {"mpeg2-ac3.m2ts", "mpegtsmux m2ts-mode=true", {MPEG2, AC3},
     {.toDamage = true, .seconds = 8, .fps = 25, .rate = 48000, .seekSlack = 3}},
    {"mpeg2-mp2.m2ts", "mpegtsmux", {MPEG2, AUDIO " ! twolamemp2enc ! mpegaudioparse"},
     {.seconds = 8, .fps = 25, .rate = 48000, .seekSlack = 3}},
    // Never damaged: avidemux of GStreamer 1.22 writes a critical of its own for one that is cut
    // (gst_flow_combiner_update_pad_flow without a pad).
    {"mpeg4-mp3.avi", "avimux", {VIDEO "avenc_mpeg4 gop-size=FPS", MP3 " ! mpegaudioparse"}, {.quick = true}},
    {"mjpeg-pcm.avi", "avimux", {VIDEO "jpegenc", AUDIO}, {.sound = "channels=2,format=S16LE"}},
    {"theora-vorbis.ogv", "oggmux", {VIDEO "theoraenc keyframe-force=FPS", VORBIS}, {.toDamage = true}},
    {"h264-aac.flv", "flvmux", {H264 " ! h264parse", AAC}},
    // Sound alone
    {"tone.mp3", "xingmux", {MP3}, {.quick = true, .toDamage = true}},
    {"8khz.mp3", "xingmux", {MP3}, {.rate = 8000, .sound = "channels=1"}},
    {"tone.m4a", "mp4mux", {AAC}},
    {"surround.m4a", "mp4mux", {AAC}, {.quick = true, .rate = 48000, .sound = SURROUND}},
    {"tone.aac", "capsfilter caps=audio/mpeg,stream-format=adts", {AAC}},
    {"tone.ogg", "oggmux", {VORBIS}},
    {"tone.opus", "oggmux", {OPUS}, {.rate = 8000, .sound = "channels=1"}},
    {"tone.ac3", "identity", {AC3}, {.indexed = false}},
    {"surround.ac3", "identity", {AC3}, {.rate = 48000, .sound = SURROUND, .indexed = false}},
    {"surround.flac", "identity", {FLAC}, {.rate = 192000, .sound = SURROUND ",format=S24LE"}},
    {"8bit.wav", "wavenc", {AUDIO}, {.quick = true, .rate = 8000, .sound = "channels=1,format=U8"}},
    {"16bit.wav", "wavenc", {AUDIO}, {.sound = "channels=2,format=S16LE"}},
    {"24bit.wav", "wavenc", {AUDIO}, {.rate = 192000, .sound = "channels=2,format=S24LE"}},
    {"32bit.wav", "wavenc", {AUDIO}, {.rate = 96000, .sound = "channels=2,format=S32LE"}},
    {"float.wav", "wavenc", {AUDIO}, {.rate = 48000, .sound = "channels=2,format=F32LE"}},
    // Streams
    {"sound-only.mp4", "mp4mux", {AAC}, {.quick = true}},
    {"languages.mkv", "matroskamux", {H264, AAC, AAC, FLAC}, {.quick = true}},
    {"text-silent.mkv", "matroskamux", {H264, TEXT}, {.quick = true}},
    {"text-first.mkv", "matroskamux", {TEXT, H264, AAC}},
    {"text-between.mkv", "matroskamux", {H264, TEXT, AAC}},
    {"text-last.mp4", "mp4mux", {H264, AAC, TEXT}},
    {"cover.mka", "matroskamux", {"videotestsrc num-buffers=3 ! video/x-raw,framerate=1/1 ! jpegenc", VORBIS},
     {.quick = true}},
    // Pictures
    {"odd.mp4", "mp4mux", {H264}, {.format = "Y444", .width = 101, .height = 77}},
    {"odd.webm", "webmmux", {VP8}, {.width = 101, .height = 77}},
    {"portrait.mp4", "mp4mux", {H264}, {.width = 120, .height = 214}},
    {"wide-pixels.mp4", "mp4mux",
     {VIDEO "capssetter caps=video/x-raw,pixel-aspect-ratio=16/11 ! x264enc key-int-max=FPS"}},
    {"one-frame.mp4", "mp4mux", {H264}, {.quick = true, .seconds = 0.1}},
    {"1-a-second.mp4", "mp4mux", {H264}, {.seconds = 4, .fps = 1}},
    {"60-a-second.mp4", "mp4mux", {H264}, {.fps = 60}},
    {"variable.mkv", "matroskamux", {FREEZE("20", "10") "c. " FREEZE("40", "20") "c. "
      "concat name=c ! capssetter caps=video/x-raw,framerate=0/1 ! " VP8ENC}, {.seconds = 4}},
    {"2160p.mp4", "mp4mux", {H264}, {.seconds = 0.5, .width = 3840, .height = 2160, .firstFrameOnly = true}},
    {"hour.mkv", "matroskamux", {H264, MP3 " target=bitrate bitrate=8 ! mpegaudioparse"},
     {.seconds = 3600, .fps = 1, .width = 64, .height = 48, .rate = 8000, .sound = "channels=1", .endingFrom = 3598}},
};
// clang-format on

bool MediaFile::holds(const char *element) const
{
    const auto named = [&](const char *stream) { return std::strstr(stream, element) != nullptr; };
    return std::any_of(streams.begin(), streams.end(), named);
}

QByteArray makeMediaFile(const MediaFile &file, bool *unsupported)
{
    const MediaShape &shape = file.shape;
    const QString folder =
        QFileInfo(QFile::decodeName(qgetenv("MEDIA_DIR"))).canonicalFilePath() + u'/';
    const QString picture = QStringLiteral("%1x%2.png").arg(shape.width).arg(shape.height);
    constexpr uchar corners[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
    QImage(corners, 2, 2, 6, QImage::Format_RGB888)
        .scaled(shape.width, shape.height)
        .save(folder + picture);
    QFile texts(folder + QStringLiteral("two.srt"));
    if (!texts.open(QIODevice::WriteOnly))
        return "nowhere to make media files";
    texts.write("1\n00:00:00,500 --> 00:00:01,000\none\n\n"
                "2\n00:00:02,000 --> 00:00:02,500\ntwo\n");
    texts.close();

    QString line =
        QStringLiteral("-u GST_TRACERS gst-launch-1.0 -q %1 name=m ! filesink location=%2")
            .arg(QLatin1String(file.muxer), QLatin1String(file.name));
    for (const char *stream : file.streams)
        line += u' ' + QLatin1String(stream) + QStringLiteral(" ! m.");
    const int frames = std::max(1, int(shape.seconds * shape.fps));
    for (const auto &[text, value] : std::initializer_list<std::pair<const char *, QString>> {
             {"PICTURE", picture},
             {"FORMAT", QLatin1String(shape.format)},
             {"FRAMES", QString::number(frames)},
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
    const bool made = process.waitForFinished(300'000) && process.exitCode() == 0;
    const QByteArray said = process.readAll();
    const bool refused = said.contains("can't handle caps") || said.contains("no element");
    if (unsupported)
        *unsupported = refused;
    return made && !refused ? QByteArray() : "cannot be made: " + said;
}
