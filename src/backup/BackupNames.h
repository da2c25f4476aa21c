#pragma once

#include <QString>

// The names that the backup function gives its files.

// The cabinet of one file is <base>.CAB, where base is the file's name up to its first ".",
// then "_", then what follows that dot: "report.doc" gives "report_doc", "a.b.c" gives "a_b.c".
// A name without a dot loses its last letter to the "_": "README" gives "READM_".
QString CabinetBaseName(const QString &name);
// <base>.CAB
QString CabinetFileName(const QString &name);

// The cabinet of a compressed directory: "DirFile_", the folder's name and ".cab", with every
// blank made "_" ("My Docs" gives "DirFile_My_Docs.cab").
QString CompressedDirName(const QString &folderName);
// An entry is a compressed directory when its name holds "DirFile_" anywhere.
bool IsCompressedDirectory(const QString &name);

// The one line that stands in a compressed directory's folder in place of its cabinet once the
// cabinet is on the web space.
QString PlaceHolderText();
// Writes the place holder at path (its line and a line end); false when it can't be written.
bool WritePlaceHolder(const QString &path);

// The pointer of an entry on the backup page: the upload path less the FTP root when the root,
// followed by "/", stands in it; the whole path when it doesn't.
QString BackupPagePath(const QString &uploadPath, const QString &ftpRoot);

// The name of the file on the web space: the part of an upload path behind its last "/".
QString RemoteNameOf(const QString &uploadPath);
