#include "ReadyToSendNames.h"
#include "ReadyToSendPage.h"

#include "CopyPhotos.h"
#include "Folders.h"
#include "ImageRotation.h"
#include "JobUi.h"
#include "History.h"
#include "PhotoPage.h"
#include "PictureSizing.h"
#include "ReadyListConversions.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

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
    if (m_copying)
        return; // one copy at a time
    int total = 0;
    for (int i = 0; i < m_file2->count(); ++i)
        total += m_file2->item(i)->isSelected() ? 1 : 0;

    // Pictures of today's formats are converted on worker threads while the walk goes on down
    // the list; the record's rows are written in the list's order as the walk passes them.
    ReadyListConversions conversions(m_services.copyThreads);
    m_conversions = &conversions;
    m_copying = true;
    m_copyCancelled = false;
    m_copyProgress->show();
    m_cancelCopy->show();
    m_cancelCopy->setEnabled(true);
    updateSelectionButtons();

    int walked = 0;
    int lastCopied = -1;
    QString lastMade;
    for (int i = 0; i < m_file2->count(); ++i) {
        if (!m_file2->item(i)->isSelected())
            continue;
        const QString plain = m_file2->item(i)->text();
        const QString made = suffix.isEmpty() ? ReadyListName(plain) : AddSuffix(plain, suffix);
        qint64 bytes = 0;
        if (suffix.isEmpty() && IsConvertedSource(plain)) {
            // Room first: a Cancel while the walk waits for it leaves this picture not begun.
            bytes = ReadyListConversions::ConversionBytes(sourcePath(plain));
            while (!conversions.hasRoom(bytes) && !m_copyCancelled)
                finishOldestConversion();
        }
        if (m_copyCancelled || i >= m_file2->count())
            break;
        m_copyProgress->setText(QStringLiteral("Copying %1 of %2").arg(++walked).arg(total));
        if (!copyOne(i, suffix, bytes))
            break;
        lastCopied = i;
        lastMade = made;
    }
    m_cancelCopy->setEnabled(false);
    m_copyProgress->setText(QStringLiteral("Finishing the pictures under way"));
    while (conversions.pending() > 0)
        finishOldestConversion();
    m_conversions = nullptr;
    m_copying = false;
    m_copyProgress->hide();
    m_cancelCopy->hide();
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

void ReadyToSendPage::CancelCopy_Click()
{
    if (m_copying)
        m_copyCancelled = true;
}

// Takes back the oldest conversion under way: a picture that could not be converted gives its
// row of the record back and a message naming it; the run goes on.
void ReadyToSendPage::finishOldestConversion()
{
    const ReadyListConversions::Done done = m_conversions->takeOldest();
    const PendingCopy copy = m_pendingCopies.front();
    m_pendingCopies.pop_front();
    if (!done.message.isEmpty()) {
        int row = copy.row;
        if (row >= m_page.PhotoNumber || m_page.PhotoName[row] != copy.name ||
            m_page.PhotoOrder[row] != copy.group)
            row = FindPhoto(m_page, copy.name, copy.group); // the record changed meanwhile
        if (PhotoPage::isRow(row) && RemovePhoto(m_page, row)) {
            for (PendingCopy &later : m_pendingCopies) {
                if (later.row > row)
                    --later.row;
            }
        }
        refreshReady();
        m_services.ui->Message(QStringLiteral("The picture \"%1\" could not be put on the "
                                              "Ready to Send list: %2")
                                   .arg(copy.plain, done.message),
                               Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    } else {
        refreshReady();
        emit stepReached(3);
    }
    QCoreApplication::processEvents();
}

// A copy that writes target waits for a conversion that is writing it already.
void ReadyToSendPage::waitForTarget(const QString &target)
{
    while (m_conversions && m_conversions->writes(target))
        finishOldestConversion();
}

// One selected row of File2 onto the list. Returns false when the run must stop.
bool ReadyToSendPage::copyOne(int row, const QString &suffix, qint64 conversionBytes)
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
    const QString wanted = readyPath(FormatGroup(m_preFix->text()) + QLatin1Char('_') + name);
    if (QFileInfo::exists(wanted) || (m_conversions && m_conversions->writes(wanted)))
        askForFreeGroup(name);
    const QString group = FormatGroup(m_preFix->text());
    const QString target = readyPath(group + QLatin1Char('_') + name);
    // Before the row is written: a conversion that ends here may give its row back.
    waitForTarget(target);

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

    if (suffix.isEmpty() && IsConvertedSource(plain)) {
        // Converted on a worker thread; finishOldestConversion takes it back in the list's order
        // (a picture that can't be read gives its row back then, and the run goes on).
        m_pendingCopies.push_back(PendingCopy{n, name, group, plain});
        m_conversions->start(sourcePath(plain), target, conversionBytes);
        return true;
    }
    if (suffix.isEmpty()) {
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
