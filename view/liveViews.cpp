#include "view/liveViews.h"

#include "update/cThread.h"
#include "view/AtomicAccess.h"
#include "view/MediaPlayerView.h"

#include <link.h>

#include <algorithm>
#include <cstdlib>
#include <utility>
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

// What is registered last is called first, and stays registered.
void silenceViewsAtExit()
{
    using Loads = decltype(dl_phdr_info::dlpi_adds);
    static Loads before = 0;
    Loads now = 0;
    dl_iterate_phdr(
        [](dl_phdr_info *info, std::size_t, void *loads) {
            *static_cast<Loads *>(loads) = info->dlpi_adds;
            return 1;
        },
        &now);
    if (std::exchange(before, now) != now)
        std::atexit(silenceViews);
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
