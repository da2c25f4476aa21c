#pragma once

#include <QString>

class JobUi;
class PhotoBuildWindow;
struct JobState;
struct PhotoPage;

// Update a Photo Page: a page built before is taken up again from its History file. The
// pictures are fetched anew from the folders they came from and put into the working folder
// under their group numbers, so the Ready to Send list stands as it did when the page was sent.

// LoadHst2: empties the working folder and the panel, reads the History file historyName (a
// name in the History folder) into page and fetches its pictures. false, after "Select a
// History file and retry.", when no file is named or it can't be read; the record is then as far
// as the reading came.
bool LoadHst2(PhotoPage &page, const QString &historyName, const QString &workingFolder, JobUi &ui,
              JobState &state, PhotoBuildWindow &window);

// TransferFiles: copies each row's picture from its folder to the working folder as
// "<group>_<name>", a group shorter than five digits padded with zeros in front ("" becomes
// "00000"). The pictures are copied (and converted, for today's formats) several at once on
// worker threads while the event loop runs; messages come in the record's order. A picture that
// is gone costs one message and the row stays in the record without a file. A cancel
// (UploadCancelled) starts no further picture; those under way are finished. Returns the number
// copied.
int TransferFiles(PhotoPage &page, const QString &workingFolder, JobUi &ui, JobState &state,
                  PhotoBuildWindow &window);
