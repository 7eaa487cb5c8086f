#include "view/liveViews.h"

#include "quirks/Quirks.h"
#include "update/cThread.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <algorithm>
#include <vector>

namespace
{

// Never destroyed: a host may destroy its application object, and so come to endLiveViews(), after
// the library's static objects are gone.
std::vector<MediaPlayerView *> &liveViews()
{
    static auto *views = new std::vector<MediaPlayerView *>;
    return *views;
}

// A process that calls exit() while its application object lives comes here with its players alive.
// Qt is going, so they are not deleted any more; but nothing of ours may run on.
void silenceViews()
{
    for (MediaPlayerView *view : liveViews())
        view->silence();
    liveViews().clear();
}

} // namespace

void addLiveView(MediaPlayerView *view)
{
    silenceViewsAtExit();
    liveViews().push_back(view);
}

void removeLiveView(MediaPlayerView *view)
{
    std::erase(liveViews(), view);
}

void silenceViewsAtExit()
{
    Quirks::librariesLoaded(silenceViews);
}

void endLiveViews()
{
    while (!liveViews().empty())
        delete liveViews().back();
}

bool MediaPlayerView::isUsable(MediaPlayerView *view)
{
    const auto &views = liveViews();
    return std::find(views.begin(), views.end(), view) != views.end() && !view->ending;
}

void MediaPlayerView::silence()
{
    storeRelease(pipelineActive, false);
    thread->destroyThread();
    if (pipeline)
        gst_element_set_state(pipeline, GST_STATE_NULL);
}
