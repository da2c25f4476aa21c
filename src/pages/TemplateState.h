#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// Everything the placeholders of a page template read besides the settings store. A builder
// fills the part it owns before each walk of a template; the walker reads it, and three
// placeholders write back into it (DirectorySavedTo, CurrentPageName, UploadPathCaption).
struct TemplateState
{
    // Photo page.
    QString PageTitle;
    QString PageGroupInfo;
    QStringList File3;       // the Ready to Send list as shown (group number + name)
    int CurrentPhotoRow = 0; // row of File3 being written
    // The text beside the picture of a File3 entry ("00050_Tree.jpg") as the page's record holds
    // it; nothing when the record has no row for the entry. Unset: no record to ask.
    std::function<std::optional<QString>(const QString &entry)> photoInfo;

    // The current Web Log page record.
    struct BlogPage
    {
        QString FileName, MainTitle, TitleColor, BackgroundColor, SubTextColor, FontType, MainDate,
            DirectorySavedTo;
    } blogPage;
    // The current Section record.
    struct BlogSection
    {
        QString DisplayedSubTitle, BlogText, Author, BlogDate, PhotoPath, PhotoTitle, ShowAuthor,
            ShowDate, ShowComment, ShowLine;
    } section;
    // The current pointer and comment records.
    struct BlogPointer
    {
        QString Category, DisplayName, URL;
    } pointer;
    QString Comment;

    // The Web Log window's state the placeholders look at.
    bool ShowPointersCk = false;
    bool ShowCommentCk = false;
    int File8Count = 0;        // pointers of the Web Log
    int File9Count = 0;        // comments of the Web Log
    QString BlogDirName;       // text of the Web Log's folder box
    QString txtWebSite;        // the web site's address ("http://" is put in front unless it
                               // names its scheme already)
    QString ClientRoot;        // text of the ClientRoot box
    QString CurrentPageName;   // written by !!CommentPtrURL!!, read by !!BLOG_MAIN_pointer!!
    QString UploadPathCaption; // written by !!CommentPtrURL!!

    // Master page.
    QString MasterTitle;
    QString MasterLinkFile;

    // Portal.
    QString File11Selected; // the category file chosen, "Tools.Cat"
    struct PortalLink
    {
        QString LinkName, URLName, Bullet;
    } link;
    int PortalColumns = 1;

    // Text of the last failure inside a placeholder; the failure itself drops the line.
    QString lastError;
};
