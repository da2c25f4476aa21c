#pragma once

#include <QString>

class QImage;

// Writes image as a GIF file at path (GIF89a, one frame, 8-bit palette).
//
// An image of at most 256 colours keeps its colours exactly; a richer one is reduced to Qt's
// 216-colour cube with error diffusion. Pixels whose alpha is below one half become the
// transparent colour of the file; an opaque image has no transparent colour.
//
// The file is written under a temporary name and renamed when complete, so a failed write never
// leaves a half-written GIF at path nor destroys a file already there. Returns false (and sets
// *error when given) for a null image, an image larger than 65535 pixels on a side, or a file
// that can't be written.
//
// Reentrant: it touches nothing but its arguments, so a large picture may be written on a worker
// thread (a 4000 x 3000 photo takes most of a second).
bool WriteGifFile(const QImage &image, const QString &path, QString *error = nullptr);
