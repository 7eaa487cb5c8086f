#include "view/liveViews.h"

#include "boundary/AtomicAccess.h"
#include "pipeline/stateChange.h"
#include "update/cThread.h"
#include "view/MediaPlayerView.h"

#include <algorithm>
#include <vector>

namespace
{

// Never destroyed: a host may destroy its application object, and so come to endLiveViews(), after
// the library's static objects are gone.
std::vector<MediaPlayerView *> &list()
{
    static auto *views = new std::vector<MediaPlayerView *>;
    return *views;
}

// The process calls exit() with players alive. Qt is going, so they are not deleted any more; but
// nothing of ours may run on.
void stopLiveViews()
{
    for (MediaPlayerView *view : list()) {
        storeRelease(view->pipelineActive, false);
        view->thread->destroyThread();
        if (view->pipeline)
            takeToNull(view->pipeline);
    }
    list().clear();
}

} // namespace

void addLiveView(MediaPlayerView *view)
{
    MediaPlayerView::librariesLoaded();
    list().push_back(view);
}

void removeLiveView(MediaPlayerView *view)
{
    std::erase(list(), view);
}

std::span<MediaPlayerView *const> liveViews()
{
    return list();
}

bool isLive(const MediaPlayerView *view)
{
    return std::ranges::find(list(), view) != list().end();
}

void endLiveViews()
{
    while (!list().empty())
        delete list().back();
}

void MediaPlayerView::librariesLoaded()
{
    Quirks::librariesLoaded(stopLiveViews);
}
