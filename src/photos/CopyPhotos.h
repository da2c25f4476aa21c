#pragma once

#include "PictureSizing.h"

#include <QString>

#include <functional>

class JobUi;
struct JobState;
struct PhotoPage;

// What CopyPhotos reads from the photo page's window.
struct CopyPhotosInput
{
    QString ChoosenUploadPath;                  // the working folder: the Ready to Send list
    QString My_resize_0 = QStringLiteral("15"); // thumbnail, % of the picture
    QString My_resize_1 = QStringLiteral("30"); // enlarged copy, % of the picture
    int threads = 0;                            // pictures sized at once; 0: one per processor core
    JpegOptions jpeg;                           // how the JPEG copies are written
    // Sizes one picture on a worker thread: SizePhoto, unless the caller brings a routine that
    // wraps it (to watch the work as it goes). Called with the arguments of SizePhoto.
    std::function<SizeResult(const QString &, const QString &, double, const QString &, double,
                             JpegOptions)>
        sizer;
};

// Makes "Sml_" and "Lrg_" copies of every picture of the working folder in target. Names that
// already begin with "Sml_" or "Lrg_" are passed over. With keep false old copies are deleted
// first. Shows "Sizing Photos" and "i of n" through ui and keeps the event loop live: the
// pictures are sized on worker threads while this call waits. A cancel (state.UploadCancelled,
// or "!!Skip!!" in state.UserResponse) stops it between pictures and gives false. A picture
// that can't be read shows "Error copying file - " and the reason, and ends the run (false); a
// copy that can't be written shows its message and the run goes on. The source pictures are
// only read.
bool CopyPhotos(const QString &target, bool keep, const CopyPhotosInput &input,
                const PhotoPage &page, JobUi &ui, JobState &state);

// CopyToReadyList (PictureSizing.h) on a worker thread while this call waits with the event loop
// live: converting a large picture takes seconds. Returns its message; empty on success.
QString CopyToReadyListLive(const QString &source, const QString &target);
