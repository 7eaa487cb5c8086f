#include "pipeline/GstHandle.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

// Who owns what: a record holds one reference on its pipeline and one on each chain element, so
// that the elements stay valid whether or not they have joined the pipeline. The source belongs to
// the pipeline. A record itself releases nothing; releaseRecord() does, when no thread can reach
// its elements any more.

void MediaPlayerView::makeCurrent(const PipelineCtx &record)
{
    nextGeneration();
    storeRelaxed(source, record.source);
    storeRelaxed(videoSink, record.videoSink);
    storeRelaxed(glUpload, record.glUpload);
    storeRelaxed(glColorConvert, record.glColorConvert);
    storeRelaxed(audioSink, record.audioSink);
    storeRelaxed(volumeElement, record.volumeElement);
    videoItem = record.videoItem;
    storeRelease(pipeline, record.pipeline);
}

// An outgoing pipeline goes to READY before the members change, since its streaming threads work
// on the members. One that does not get there in time goes to NULL: its preroll would link its
// streams into the next pipeline's elements. Whatever it has said belongs to a run that is over.
void MediaPlayerView::retireCurrent()
{
    if (!pipeline)
        return;
    if (gstElementSetState(GST_STATE_READY) != GST_STATE_CHANGE_SUCCESS)
        changeState(pipeline, GST_STATE_NULL);
    emptyBus(pipeline);
}

void MediaPlayerView::releaseRecord(PipelineCtx &record)
{
    if (record.pipeline) {
        gst_element_set_state(record.pipeline, GST_STATE_NULL);
        awaitNull(record.pipeline);
        gst_object_unref(record.pipeline);
    }
    for (GstElement *element : {record.videoSink, record.glUpload, record.glColorConvert,
                                record.audioSink, record.volumeElement}) {
        if (element)
            gst_object_unref(element);
    }
    record = PipelineCtx();
}

void MediaPlayerView::releaseCurrent()
{
    GstElement *const outgoing = pipeline;
    makeCurrent(PipelineCtx());
    for (auto entry = pipelineCache.begin(); entry != pipelineCache.end(); ++entry) {
        if (entry.value()->pipeline == outgoing) {
            releaseRecord(*entry.value());
            pipelineCache.erase(entry);
            return;
        }
    }
    gst_object_unref(outgoing);
}

void MediaPlayerView::releaseCache()
{
    for (const auto &record : std::as_const(pipelineCache))
        releaseRecord(*record);
    pipelineCache.clear();
}
