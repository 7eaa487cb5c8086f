#ifndef COVER_H
#define COVER_H

#include <QtCore/QUrl>
#include <QtCore/QVariantMap>
#include <QtGui/QImage>

/// The picture that goes with a sound: the one in the file, else one that lies beside it under one
/// of the usual names. Null if there is none.
QImage coverOf(const QUrl &media, const QVariantMap &metaData);

#endif
