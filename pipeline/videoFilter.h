#ifndef VIDEOFILTER_H
#define VIDEOFILTER_H

#include "pipeline/chain.h"

constexpr char videoTurnerName[] = "videoturner";

/// What a video stream needs in front of its chain, as a pipeline description; empty for nothing.
std::string videoFilterFor(const StreamFormat &stream);

#endif
