#include "ReadyToSendNames.h"
#include "ReadyToSendPage.h"

#include "CopyPhotos.h"
#include "Folders.h"
#include "ImageRotation.h"
#include "JobUi.h"
#include "History.h"
#include "PhotoPage.h"
#include "PictureSizing.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

// Copies source over target, replacing a file that is there already.
bool replaceFile(const QString &source, const QString &target)
{
    if (!QFileInfo(source).isFile())
        return false;
    if (QFileInfo::exists(target) && !QFile::remove(target))
        return false;
    return QFile::copy(source, target);
}

} // namespace

void ReadyToSendPage::CopyPhotoPlain()
{
    copySelected(QString());
}

void ReadyToSendPage::CopyPhotoLeft()
{
    copySelected(QStringLiteral("_Left"));
}

void ReadyToSendPage::CopyPhotoRight()
{
    copySelected(QStringLiteral("_Right"));
}

void ReadyToSendPage::FromSelectAllButton_Click()
{
    m_file2->selectAll();
    m_file2->setFocus();
}

void ReadyToSendPage::copySelected(const QString &suffix)
{
    int lastCopied = -1;
    QString lastMade;
    for (int i = 0; i < m_file2->count(); ++i) {
        if (!m_file2->item(i)->isSelected())
            continue;
        const QString plain = m_file2->item(i)->text();
        const QString made = suffix.isEmpty() ? ReadyListName(plain) : AddSuffix(plain, suffix);
        if (!copyOne(i, suffix))
            break;
        lastCopied = i;
        lastMade = made;
    }
    refreshReady();

    // Select the picture behind the last one copied, so that repeated clicks run down the list;
    // a rotated copy just made beside it is passed over.
    if (lastCopied < 0)
        return;
    int next = lastCopied + 1;
    if (!suffix.isEmpty() && next < m_file2->count() && m_file2->item(next)->text() == lastMade)
        ++next;
    if (next < m_file2->count()) {
        m_file2->item(next)->setSelected(true);
        m_file2->setCurrentRow(next, QItemSelectionModel::NoUpdate);
        m_file2->scrollToItem(m_file2->item(next));
    }
}

// One selected row of File2 onto the list. Returns false when the run must stop.
bool ReadyToSendPage::copyOne(int row, const QString &suffix)
{
    QCoreApplication::processEvents();
    refreshReady();
    if (row >= m_file2->count())
        return false; // the folder changed under the run

    if (!IsNumericText(m_preFix->text()))
        m_preFix->setText(QStringLiteral("0"));

    const QString plain = m_file2->item(row)->text();
    // A picture of today's formats goes onto the list as a JPEG named after it.
    const QString name = suffix.isEmpty() ? ReadyListName(plain) : AddSuffix(plain, suffix);
    if (QFileInfo::exists(readyPath(FormatGroup(m_preFix->text()) + QLatin1Char('_') + name)))
        askForFreeGroup(name);
    const QString group = FormatGroup(m_preFix->text());

    const int n = m_page.PhotoNumber;
    if (PhotoPage::isRow(n)) {
        m_page.PhotoName[n] = name;
        m_page.PhotoPath[n] = m_sourceFolder;
        m_page.PhotoRotate[n] = suffix;
        m_page.PhotoOrder[n] = group;
    }
    m_file2->item(row)->setSelected(false);

    // The plain copy stops at 400 pictures and the turned ones at 401.
    const int limit = suffix.isEmpty() ? PhotoPage::Rows - 2 : PhotoPage::Rows - 1;
    if (n > limit) {
        m_services.ui->Message(QStringLiteral("Maximum number of photos have been reached"),
                               Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Information);
        return false;
    }
    ++m_page.PhotoNumber;

    const QString target = readyPath(group + QLatin1Char('_') + name);
    if (suffix.isEmpty() && IsConvertedSource(plain)) {
        const QString failure = CopyToReadyListLive(sourcePath(plain), target);
        if (!failure.isEmpty()) {
            // The picture can't be read: the row goes again, and the rest of the run goes on.
            if (PhotoPage::isRow(n))
                RemovePhoto(m_page, n);
            m_services.ui->Message(QStringLiteral("The picture \"%1\" could not be put on the "
                                                  "Ready to Send list: %2")
                                       .arg(plain, failure),
                                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return true;
        }
    } else if (suffix.isEmpty()) {
        if (!replaceFile(sourcePath(plain), target)) {
            m_services.ui->Message(QStringLiteral("The picture \"%1\" could not be copied to the "
                                                  "Ready to Send list (%2).")
                                       .arg(plain, QDir::toNativeSeparators(m_workingFolder)),
                                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return false;
        }
    } else {
        // A failed turn still goes on to the copy; a failed copy leaves the row without a file.
        if (suffix == QStringLiteral("_Left"))
            RotateLeft(sourcePath(plain), sourcePath(name), *m_services.ui);
        else
            RotateRight(sourcePath(plain), sourcePath(name), *m_services.ui);
        refreshReady();
        refreshSource();
        replaceFile(sourcePath(name), target);
    }
    emit stepReached(3);
    return true;
}

// The name is on the list in this group already: offer the next group.
bool ReadyToSendPage::askForFreeGroup(const QString &)
{
    const QString answer = m_services.inputBox(
        QStringLiteral("This File name already exist in this Grouping. Would you like to add "
                       "this on this page as another group? (Enter the group number and select "
                       "OK.)"),
        Tarnwick, DecimalText(NumericValue(m_preFix->text()) + 1));
    if (answer.isEmpty())
        return false; // the copy below overwrites the file that is there
    m_preFix->setText(answer);
    return true;
}

void ReadyToSendPage::PreFix_LostFocus()
{
    const QString value = DecimalText(NumericValue(m_preFix->text()));
    if (m_preFix->text() != value)
        m_preFix->setText(value);
}

void ReadyToSendPage::ChangeCopyPathButton_Click()
{
    QString start = m_sourceFolder;
    if (start.isEmpty() || !QFileInfo(start).isDir())
        start = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    if (!m_services.chooseFolder)
        return;
    const QString chosen = QDir::cleanPath(m_services.chooseFolder(start));
    if (chosen.isEmpty() || chosen == QStringLiteral("."))
        return; // cancelled

    if (chosen != m_sourceFolder && m_file3->count() > 0) {
        const QString answer = m_services.inputBox(
            QStringLiteral("You are changing directories with files in your 'Ready to Send' "
                           "list. Would you like to change the group number? (Enter the group "
                           "number and select OK. This will maintain the Image order.)"),
            Tarnwick, DecimalText(NumericValue(m_preFix->text()) + 1));
        if (!answer.isEmpty())
            m_preFix->setText(answer);
    }

    setWorkingFolder(m_workingFolder);
    SaveSetting(QStringLiteral("CopyPath"), chosen);
    setSourceFolder(chosen);
    clearPreview();
    emit stepReached(1);
}
