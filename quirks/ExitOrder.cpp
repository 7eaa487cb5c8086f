#include "quirks/ExitOrder.h"

#include <link.h>

#include <cstdlib>
#include <utility>

void runBeforeLibrariesEnd(void (*stopPlayers)())
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
        std::atexit(stopPlayers);
}
