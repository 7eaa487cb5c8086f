#ifndef MEDIAPLAYER_CLIENTEXPORT_H
#define MEDIAPLAYER_CLIENTEXPORT_H

#define MEDIAPLAYER_CLIENT __attribute__((visibility("default")))

#endif
