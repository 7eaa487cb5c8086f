#ifndef MEDIAPLAYER_REDIRECTSERVER_H
#define MEDIAPLAYER_REDIRECTSERVER_H

#include <QtCore/QUrl>

// Short names for long addresses: a server on this machine's loopback interface that answers each
// of its paths, which nobody can guess, with a redirection. It runs on a thread of its own, since
// the plug-in may hold up the GUI thread while GStreamer waits for the answer.

namespace MediaPlayer::RedirectServer
{

/// An address that ends in `suffix` and leads to `target`; empty if no server can be had.
/// GUI thread.
QByteArray redirect(const QUrl &target, const QByteArray &suffix);

/// `address` leads nowhere any more. GUI thread.
void forget(const QByteArray &address);

} // namespace MediaPlayer::RedirectServer

#endif
