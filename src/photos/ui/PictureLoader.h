#pragma once

#include <QImage>
#include <QString>

// Reads a picture file the way every view of the program shows it: upright, with the EXIF
// orientation of the camera applied. A file that is missing or isn't a picture gives a null
// image; nothing is reported.
QImage LoadPicture(const QString &path);
