#pragma once

#include <QString>

// The program's fixed data tree under ~/Tarnwick and the read-only data folder.
// Every path is absolute and has no trailing "/" except HomeFolder(), which ends in "/".
namespace Folders {

QString HomeFolder();          // ~/Tarnwick/
QString ImagesFolder();        // ~/Tarnwick/images
QString HistoryFolder();       // ~/Tarnwick/History
QString BackupFolder();        // ~/Tarnwick/Backup
QString StartupFolder();       // ~/Tarnwick/Startup
QString BlogFolder();          // ~/Tarnwick/Web_Log
QString BlogPointerFolder();   // ~/Tarnwick/Web_Log/MasterPointers
QString BlogsFolder();         // ~/Tarnwick/Web_Logs
QString MasterPointerFolder(); // ~/Tarnwick/Web_Logs/MasterPointers
QString PhotosFolder();        // ~/Tarnwick/Photos
QString PhotosHtmlFolder();    // ~/Tarnwick/Photos/HTML

// The read-only folder of master copies: <prefix>/share/tarnwick next to the executable's bin/.
// Empty when no such folder exists.
QString ProgramFolder();
// Tests point the data folder elsewhere (or at a missing folder).
void SetProgramFolder(const QString &path);

// Makes the tree in the order above; a folder that exists or can't be made is passed over.
void MakeFolderTree();

// The user's documents, desktop, pictures and shared folders; "" when the platform can't tell.
enum class SystemFolder { Desktop = 0, Documents = 5, Shared = 25, Pictures = 39 };
QString FindSystemFolder(SystemFolder which);

} // namespace Folders
