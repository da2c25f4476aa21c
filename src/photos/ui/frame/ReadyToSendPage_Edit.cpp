#include "ReadyToSendNames.h"
#include "ReadyToSendPage.h"

#include "Helpers.h"
#include "History.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoPage.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTextCursor>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");
const QString DeleteFiles = QStringLiteral("Delete Files");

// Record texts keep CR LF line ends; the edit box works with "\n".
QString toRecordText(QString text)
{
    return text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
}

QString toEditText(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

QStringList selectedNames(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->isSelected())
            names.append(list->item(i)->text());
    }
    return names;
}

} // namespace

void ReadyToSendPage::File3_Click(int row)
{
    if (row < 0 || row >= m_file3->count())
        return;
    const QString name = m_file3->item(row)->text();
    showPreview(readyPath(name));
    m_oldOrderName = name;
    m_editRow = FindPhoto(m_page, RemoveGroupNumber(name), GetGroupNumber(name));
    EditButtons_Click(8);
}

void ReadyToSendPage::EditButtons_Click(int index)
{
    switch (index) {
    case 0:
        showPanel(QStringLiteral("Edit Page Title"), false);
        setText1(m_page.Title);
        break;
    case 1:
        showPanel(QStringLiteral("Edit Page Introduction"), false);
        setText1(m_page.GroupInfo);
        break;
    case 2:
        ClearAll();
        break;
    case 3:
        SaveAll();
        break;
    case 4:
        DeleteFromReady();
        break;
    case 5:
        DeleteFromSource();
        break;
    case 6:
        m_editFrame->hide();
        break;
    case 7:
        PrintList();
        break;
    case 8: {
        const bool known = PhotoPage::isRow(m_editRow);
        showPanel(QStringLiteral("Edit Photo Description-") + m_oldOrderName, true);
        setText1(known ? m_page.PhotoInfo[m_editRow] : QString());
        const bool left = known && m_page.PhotoLeft[m_editRow] == QStringLiteral("True");
        m_leftRight[left ? 0 : 1]->setChecked(true);
        m_orderPhotos->setText(known ? m_page.PhotoOrder[m_editRow] : QString());
        // A file put into the working folder by hand has no row to edit.
        m_text1->setEnabled(known);
        m_leftRight[0]->setEnabled(known);
        m_leftRight[1]->setEnabled(known);
        m_orderPhotos->setEnabled(known);
        break;
    }
    default:
        break;
    }
}

void ReadyToSendPage::showPanel(const QString &caption, bool photoFields)
{
    m_editFrame->setTitle(caption);
    m_leftRight[0]->setVisible(photoFields);
    m_leftRight[1]->setVisible(photoFields);
    m_orderLabel->setVisible(photoFields);
    m_orderPhotos->setVisible(photoFields);
    m_text1->setEnabled(true);
    m_editFrame->show();
}

void ReadyToSendPage::setText1(const QString &text)
{
    m_settingText = true;
    m_text1->setPlainText(toEditText(text));
    m_settingText = false;
    QTextCursor cursor = m_text1->textCursor();
    cursor.movePosition(QTextCursor::End);
    m_text1->setTextCursor(cursor);
}

// What the user types goes where the panel's caption says. The title and introduction panels
// carry captions of their own, so their text lands beside the picture last clicked.
void ReadyToSendPage::Text1_Change()
{
    if (m_settingText)
        return;
    const QString caption = m_editFrame->title();
    const QString text = toRecordText(m_text1->toPlainText());
    if (caption == QStringLiteral("Edit Title"))
        m_page.Title = text;
    else if (caption == QStringLiteral("Edit Page Comment"))
        m_page.GroupInfo = text;
    else if (PhotoPage::isRow(m_editRow))
        m_page.PhotoInfo[m_editRow] = text;
}

void ReadyToSendPage::LeftRight_Click(int index)
{
    if (PhotoPage::isRow(m_editRow))
        m_page.PhotoLeft[m_editRow] = index == 0 ? QStringLiteral("True") : QStringLiteral("False");
}

// A new group for the picture in the panel: the file is renamed into it.
void ReadyToSendPage::OrderPhotos_LostFocus()
{
    if (m_orderBusy || !m_orderPhotos->isVisible() || !m_orderPhotos->isEnabled())
        return;
    const QString typed = m_orderPhotos->text();
    const QString oldName = m_oldOrderName;
    const int row = m_editRow;
    if (DecimalText(NumericValue(typed)).trimmed().isEmpty() || oldName.isEmpty())
        return;
    if (GetGroupNumber(oldName) == typed)
        return;

    m_orderBusy = true; // a message below takes the focus away again
    const QString oldPath = readyPath(oldName);
    const QString newName =
        (QStringLiteral("00000") + typed).right(5) + QLatin1Char('_') + RemoveGroupNumber(oldName);
    const QString newPath = readyPath(newName);
    if (newPath != oldPath) {
        if (QFileInfo::exists(newPath))
            QFile::remove(newPath);
        if (!QFile::copy(oldPath, newPath)) {
            m_services.ui->Message(
                QStringLiteral("The picture \"%1\" could not be moved to group %2.")
                    .arg(oldName, typed),
                Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            refreshReady();
            m_orderBusy = false;
            return;
        }
    }
    if (PhotoPage::isRow(row))
        m_page.PhotoOrder[row] = typed;
    if (newPath != oldPath)
        DoKill(oldPath);
    refreshReady();

    const auto found = m_file3->findItems(newName, Qt::MatchExactly);
    if (found.isEmpty()) {
        m_orderPhotos->setText(QStringLiteral("00000"));
        m_oldOrderName.clear();
    } else {
        m_file3->clearSelection();
        m_file3->setCurrentItem(found.first());
        found.first()->setSelected(true);
        m_oldOrderName = newName;
        m_editFrame->setTitle(QStringLiteral("Edit Photo Description-") + newName);
    }
    m_orderBusy = false;
}

void ReadyToSendPage::DeleteFromReady()
{
    const QStringList names = selectedNames(m_file3);
    if (names.isEmpty())
        return;
    if (m_services.ui->Message(
            QStringLiteral("Are you sure you want to delete the selected items?"), DeleteFiles,
            JobUi::Buttons::OkCancel, JobUi::Icon::Question,
            JobUi::Answer::Cancel) != JobUi::Answer::Ok)
        return;
    for (const QString &name : names) {
        DoKill(readyPath(name));
        RemovePhoto(m_page, FindPhoto(m_page, RemoveGroupNumber(name), GetGroupNumber(name)));
    }
    refreshReady();
    clearPreview();
    m_editFrame->hide();
    m_oldOrderName.clear();
}

void ReadyToSendPage::DeleteFromSource()
{
    const QStringList names = selectedNames(m_file2);
    if (names.isEmpty())
        return;
    if (m_services.ui->Message(
            QStringLiteral("These Files are from your source directory. Are you sure you want to "
                           "delete the selected items? This delete can not be undone."),
            DeleteFiles, JobUi::Buttons::OkCancel, JobUi::Icon::Warning,
            JobUi::Answer::Cancel) != JobUi::Answer::Ok)
        return;
    for (const QString &name : names)
        DoKill(sourcePath(name));
    clearPreview();
    refreshSource();
}

void ReadyToSendPage::ClearAll()
{
    if (m_services.ui->Message(QStringLiteral("Are you sure you want to clear all on this page?"),
                               Tarnwick, JobUi::Buttons::OkCancel,
                               JobUi::Icon::Question) != JobUi::Answer::Ok)
        return;
    const int oldCount = m_page.PhotoNumber;
    for (int i = 0; i < m_file3->count(); ++i) {
        const QString name = m_file3->item(i)->text();
        DoKill(readyPath(name));
        RemovePhoto(m_page, FindPhoto(m_page, RemoveGroupNumber(name), GetGroupNumber(name)));
    }
    m_page.FileName.clear();
    m_page.Title.clear();
    m_page.GroupInfo.clear();
    m_page.PhotoNumber = 0;
    for (int i = 0; i <= oldCount && PhotoPage::isRow(i); ++i) {
        m_page.PhotoName[i].clear();
        m_page.PhotoPath[i].clear();
        m_page.PhotoRotate[i].clear();
        m_page.PhotoInfo[i].clear();
        m_page.PhotoLeft[i].clear();
        m_page.PhotoOrder[i].clear();
    }
    refreshReady();
    clearPreview();
    m_editFrame->hide();
    m_oldOrderName.clear();
}

void ReadyToSendPage::SaveAll()
{
    if (m_page.FileName.isEmpty()) {
        if (m_services.namePage) {
            if (!m_services.namePage())
                return;
        } else {
            // Until a page has a name of its own, it is asked for here.
            const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyMMddHHmm"));
            const QString fallback = QStringLiteral("Photo") + now;
            const QString answer =
                AskUser(*m_services.ui, *m_services.state,
                        QStringLiteral("Enter the name of the webpage (no extention, example: "
                                       "'Trip to NY May 2007')..."),
                        fallback)
                    .trimmed();
            if (answer == JobState::Skip)
                return;
            m_page.FileName = answer == JobState::Blank || answer.isEmpty() ? fallback : answer;
        }
        // A name of nothing but characters that a file name can't hold names no file.
        if (m_page.FileName.trimmed().isEmpty()) {
            m_services.ui->Message(
                QStringLiteral("The list was not saved: the page name holds no letters or digits "
                               "that a file name can use. Press Save All again and type another "
                               "name."),
                Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return;
        }
    }
    const HistoryResult saved = SaveHistory(m_page);
    if (!saved.ok) {
        m_services.ui->Message(QStringLiteral("The History file could not be saved. ") +
                                   saved.error,
                               Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return;
    }
    m_readyCount->setText(m_readyCount->text().section(QStringLiteral(" - "), 0, 0) +
                          QStringLiteral(" - saved as \"%1.hst\"").arg(m_page.FileName));
    emit historySaved();
    if (m_services.historyChanged)
        m_services.historyChanged();
}
