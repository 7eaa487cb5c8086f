#ifndef LOSTERROR_H
#define LOSTERROR_H

#include <gst/gst.h>

/// For a preroll that did not complete in time. decodebin drops the error of a demuxer that fails
/// while it is being activated, as with a truncated file, and the pipeline would wait for ever
/// without a word: posts an error if a demuxer has given up without having found a stream. Any
/// thread.
void tellLostError(GstElement *pipeline);

#endif
