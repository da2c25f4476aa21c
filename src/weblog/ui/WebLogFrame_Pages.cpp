#include "WebLogFrame.h"

#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "Settings.h"
#include "SettingsKeys.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace BuildBlog;

namespace {

struct PageColour
{
    const char *name;
    const char *caption;
};
const PageColour PageColours[3] = {
    {"BlogBackgroundColor", "Page Background Color"},
    {"BlogTitleColor", "Title Color"},
    {"BlogTextColor", "Text Color"},
};

QPushButton *colourBox(const QString &name, QWidget *parent)
{
    auto *box = new QPushButton(QStringLiteral("Click Here to Change"), parent);
    box->setObjectName(name);
    box->setMinimumHeight(30);
    return box;
}

} // namespace

QWidget *WebLogFrame::buildWebLogsPage()
{
    auto *page = new QWidget(this);
    auto *row = new QHBoxLayout(page);
    auto *listColumn = new QVBoxLayout;
    listColumn->addWidget(new QLabel(QStringLiteral("Your Web Logs"), page));
    m_file6[0] = new QListWidget(page);
    m_file6[0]->setObjectName(QStringLiteral("File6_0"));
    listColumn->addWidget(m_file6[0], 1);
    row->addLayout(listColumn, 2);

    auto *buttons = new QVBoxLayout;
    const auto button = [&](const char *name, const char *caption) {
        auto *made = new QPushButton(QString::fromLatin1(caption), page);
        made->setObjectName(QString::fromLatin1(name));
        made->setMinimumHeight(34);
        buttons->addWidget(made);
        return made;
    };
    QPushButton *add = button("addNewBlogFileButton", "Add New Web Log ");
    QPushButton *open = button("SelectBlogPageButton", "Open Web Log ");
    QPushButton *goTo = button("Command6", "Go To");
    goTo->setToolTip(QStringLiteral("Goes to the sections of the open Web Log."));
    QPushButton *remove = button("RemoveBlogFileButton", "Remove this Web Log ");
    buttons->addStretch(1);
    row->addLayout(buttons, 1);

    connect(add, &QPushButton::clicked, this, &WebLogFrame::addNewBlogFileButton_Click);
    connect(open, &QPushButton::clicked, this, &WebLogFrame::SelectBlogPageButton_Click);
    connect(goTo, &QPushButton::clicked, this, &WebLogFrame::Command6_Click);
    connect(remove, &QPushButton::clicked, this, &WebLogFrame::RemoveBlogFileButton_Click);
    connect(m_file6[0], &QListWidget::itemClicked, this, [this] { File6_Click(); });
    connect(m_file6[0], &QListWidget::itemDoubleClicked, this, [this] {
        File6_Click();
        Command6_Click();
        shapeEvent(12);
    });
    return page;
}

QWidget *WebLogFrame::buildSettingsPage()
{
    auto *page = new QWidget(this);
    auto *row = new QHBoxLayout(page);

    auto *record = new QGroupBox(QStringLiteral("This Web Log"), page);
    auto *form = new QFormLayout(record);
    const auto field = [&](const char *name, const char *caption) {
        auto *made = new QLineEdit(record);
        made->setObjectName(QString::fromLatin1(name));
        form->addRow(QString::fromLatin1(caption), made);
        return made;
    };
    m_blogFileName = field("BlogFileName", "Web Log File Name (Record keeping only)");
    m_blogFileName->setReadOnly(true);
    m_blogDate = field("BlogDate", "Date");
    m_blogTitle = field("BlogTitle", "Displayed Web Log Title (main title of the web page)");
    m_blogDirName = field("BlogDirName", "Web Log Directory");
    m_blogDirName->setText(GetSetting(SettingKey::BlogDirName, SettingDefault::BlogDirName));
    m_blogDirName->installEventFilter(this);
    for (int i = 0; i < 3; ++i) {
        m_pageColours[static_cast<size_t>(i)] =
            colourBox(QString::fromLatin1(PageColours[i].name), record);
        form->addRow(QString::fromLatin1(PageColours[i].caption),
                     m_pageColours[static_cast<size_t>(i)]);
        connect(m_pageColours[static_cast<size_t>(i)], &QPushButton::clicked, this,
                [this, i] { pageColour_Click(i); });
    }
    m_pageFont = colourBox(QStringLiteral("PageFont"), record);
    form->addRow(QStringLiteral("Page Font"), m_pageFont);
    m_pageFontExample = new QLabel(QStringLiteral("Font Example (ABC abc)"), record);
    m_pageFontExample->setObjectName(QStringLiteral("PageFontExample"));
    form->addRow(QString(), m_pageFontExample);
    connect(m_pageFont, &QPushButton::clicked, this, &WebLogFrame::PageFont_Click);
    row->addWidget(record, 3);

    auto *you = new QGroupBox(QStringLiteral("You"), page);
    auto *youForm = new QVBoxLayout(you);
    youForm->addWidget(new QLabel(QStringLiteral("Default Author"), you));
    m_defaultAuthor = new QLineEdit(you);
    m_defaultAuthor->setObjectName(QStringLiteral("BlogDefaultAuthor"));
    youForm->addWidget(m_defaultAuthor);
    youForm->addWidget(
        new QLabel(QStringLiteral("Email Address (For the comment or reply field)"), you));
    m_emailID = new QLineEdit(you);
    m_emailID->setObjectName(QStringLiteral("BlogEmailID"));
    youForm->addWidget(m_emailID);
    youForm->addStretch(1);
    row->addWidget(you, 2);

    // The two fields stand for the main window's own, which the FTP tab shows as well: both
    // follow each other and the settings.
    const auto mirror = [this](QLineEdit *mine, QLineEdit *shell, const QString &key) {
        mine->setText(shell ? shell->text() : GetSetting(key));
        connect(mine, &QLineEdit::textEdited, this, [mine, shell, key] {
            SaveSetting(key, mine->text());
            if (shell)
                shell->setText(mine->text());
        });
        if (shell)
            connect(shell, &QLineEdit::textChanged, mine, [mine](const QString &text) {
                if (mine->text() != text)
                    mine->setText(text);
            });
    };
    mirror(m_defaultAuthor, m_services.txtDefaultAuthor, QStringLiteral("Author"));
    mirror(m_emailID, m_services.txtEmailID, QStringLiteral("EmailID"));

    connect(m_blogTitle, &QLineEdit::textEdited, this, [this] {
        mainFieldEdited();
        shapeEvent(14);
    });
    connect(m_blogDate, &QLineEdit::textEdited, this, &WebLogFrame::mainFieldEdited);
    return page;
}

void WebLogFrame::refreshWebLogs()
{
    const QStringList names = BlogFileList(BlogRoot(), QStringLiteral("*.blg"));
    for (QListWidget *list : m_file6) {
        const QString selected = selectedName(list);
        fillList(list, names);
        const auto found = list->findItems(selected, Qt::MatchExactly);
        if (!found.isEmpty() && list == m_file6[0])
            found.first()->setSelected(true);
    }
}

QStringList WebLogFrame::allWebLogs() const
{
    QStringList names;
    for (int i = 0; i < m_file6[1]->count(); ++i)
        names << m_file6[1]->item(i)->text();
    return names;
}

QStringList WebLogFrame::chosenWebLogs() const
{
    QStringList names;
    for (int i = 0; i < m_file6[1]->count(); ++i) {
        if (m_file6[1]->item(i)->isSelected())
            names << m_file6[1]->item(i)->text();
    }
    return names;
}

void WebLogFrame::addNewBlogFileButton_Click()
{
    const QString stamp = QStringLiteral("Web Log ") + DateStamp();
    QString answer = ask(QStringLiteral("Enter a name for the Web Log file. (This is for file "
                                        "keeping only)..."),
                         stamp);
    if (answer == JobState::Blank)
        answer = stamp;
    if (answer == JobState::Skip)
        return;
    const QString name = CleanFileName(answer);
    if (name.trimmed().isEmpty())
        return;
    // A Web Log of that name is opened as it stands rather than started anew over its record.
    if (QFileInfo(MainRecordPath(name)).isFile()) {
        message(QStringLiteral("There is a Web Log named \"%1\" already; it is opened.").arg(name));
    } else {
        BlogText_LostFocus();
        ClearBlogMain(m_records);
        BlogMain &main = m_records.main;
        main.FileName = name;
        main.MainDate = PresentDate();
        main.ShowPointers = QStringLiteral("Yes");
        main.ShowCommentPage = QStringLiteral("Yes");
        main.DirectorySavedTo = m_blogDirName->text();
        main.TitleColor = GetSetting(SettingKey::MstrTitleColor, QStringLiteral("#008000"));
        main.BackgroundColor = GetSetting(SettingKey::MstrBGColor, QStringLiteral("#7F7Fff"));
        main.SubTextColor = GetSetting(SettingKey::MstrTextColor, QStringLiteral("#000000"));
        main.FontType = GetSetting(SettingKey::MstrFont, QStringLiteral("Arial"));
        SaveBlogMain(m_records);
    }
    refreshWebLogs();
    m_file6[0]->clearSelection();
    const auto items = m_file6[0]->findItems(name + QStringLiteral(".blg"), Qt::MatchExactly);
    if (!items.isEmpty()) {
        m_file6[0]->setCurrentItem(items.first());
        items.first()->setSelected(true);
    }
    shapeEvent(11);
    File6_Click();
}

void WebLogFrame::File6_Click()
{
    const QString entry = selectedName(m_file6[0]);
    if (entry.isEmpty())
        return;
    BlogText_LostFocus();
    ClearBlogMain(m_records);
    m_records.main.FileName = EntryName(entry);
    if (!LoadBlogMain(m_records)) {
        message(QStringLiteral("The Web Log \"%1\" can't be read; the list is read again.")
                    .arg(EntryName(entry)));
        ClearBlogMain(m_records);
        enableWebLogFrames(false);
        m_label2->clear();
        refreshWebLogs();
        return;
    }
    if (!m_records.main.DirectorySavedTo.isEmpty())
        m_blogDirName->setText(m_records.main.DirectorySavedTo);
    EnsureBlogFolders(m_records.main.FileName);
    ClearBlogSection(m_records);
    m_records.pointer = BlogPointer();
    m_records.comment = BlogComment();
    fillMainControls();
    refreshSections();
    refreshPointers();
    refreshComments();
    showSectionEditor(false);
    enableWebLogFrames(true);
    m_label2->setText(QStringLiteral("Web Log: ") + m_records.main.FileName);
    shapeEvent(16);
}

void WebLogFrame::fillMainControls()
{
    m_filling = true;
    const BlogMain &main = m_records.main;
    m_blogFileName->setText(main.FileName);
    m_blogDate->setText(main.MainDate);
    m_blogTitle->setText(main.MainTitle);
    showColourBox(m_pageColours[0], main.BackgroundColor);
    showColourBox(m_pageColours[1], main.TitleColor);
    showColourBox(m_pageColours[2], main.SubTextColor);
    m_pageFont->setToolTip(main.FontType);
    m_pageFontExample->setFont(
        QFont(main.FontType.isEmpty() ? QStringLiteral("Arial") : main.FontType, 12));
    m_showPointersCk->setChecked(main.ShowPointers != QLatin1String("No"));
    m_showCommentCk->setChecked(main.ShowCommentPage != QLatin1String("No"));
    m_filling = false;
}

void WebLogFrame::mainFieldEdited()
{
    if (m_filling || !webLogOpen())
        return;
    m_records.main.MainTitle = m_blogTitle->text();
    m_records.main.MainDate = m_blogDate->text();
    saveMain();
}

void WebLogFrame::saveMain()
{
    if (!m_records.main.FileName.isEmpty())
        SaveBlogMain(m_records);
}

void WebLogFrame::BlogDirName_LostFocus()
{
    SaveSetting(SettingKey::BlogDirName, m_blogDirName->text());
    if (!webLogOpen())
        return;
    m_records.main.DirectorySavedTo = m_blogDirName->text();
    saveMain();
}

void WebLogFrame::RemoveBlogFileButton_Click()
{
    const QString entry = selectedName(m_file6[0]);
    if (entry.isEmpty()) {
        message(QStringLiteral("Need to select a page first."), QStringLiteral("Need to know..."));
        return;
    }
    if (!confirm(QStringLiteral("Are you sure you want to delete this Web Log? (This can not be "
                                "undone.)")))
        return;
    const QString name = EntryName(entry);
    DoKill(MainRecordPath(name));
    if (m_records.main.FileName == name) {
        ClearBlogMain(m_records);
        ClearBlogSection(m_records);
        enableWebLogFrames(false);
        m_label2->clear();
        fillList(m_file5, {});
        fillList(m_file8, {});
        fillList(m_file9, {});
    }
    refreshWebLogs();
}

void WebLogFrame::SelectBlogPageButton_Click()
{
    if (selectedName(m_file6[0]).isEmpty()) {
        message(QStringLiteral("Need to select a page first."), QStringLiteral("Need to know..."));
        return;
    }
    File6_Click();
}

void WebLogFrame::Command6_Click()
{
    TabStrip3_Click(2);
    BlogSelectItem_Click();
}

void WebLogFrame::showColourBox(QPushButton *box, const QString &colour)
{
    const int number = HexColorToRGB(colour);
    const QColor value(number & 0xFF, (number >> 8) & 0xFF, (number >> 16) & 0xFF);
    const QColor ink = value.lightness() > 140 ? QColor(Qt::black) : QColor(Qt::white);
    box->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; color: %2; border: 1px solid "
                       "palette(mid); border-radius: 4px; padding: 4px 12px; }")
            .arg(value.name(), ink.name()));
    box->setToolTip(colour);
}

void WebLogFrame::pageColour_Click(int index)
{
    if (!webLogOpen()) {
        message(QStringLiteral("You need to create a file before setting this color."));
        return;
    }
    if (!m_services.chooseColour)
        return;
    BlogMain &main = m_records.main;
    QString *fields[3] = {&main.BackgroundColor, &main.TitleColor, &main.SubTextColor};
    const std::optional<QString> chosen = m_services.chooseColour(*fields[index], this);
    if (!chosen)
        return;
    *fields[index] = *chosen;
    saveMain();
    showColourBox(m_pageColours[static_cast<size_t>(index)], *chosen);
}

void WebLogFrame::PageFont_Click()
{
    if (!webLogOpen()) {
        message(QStringLiteral("You need to create a file before setting this font."));
        return;
    }
    if (!m_services.chooseFont)
        return;
    const QString current =
        m_records.main.FontType.isEmpty() ? QStringLiteral("Arial") : m_records.main.FontType;
    const std::optional<QString> chosen = m_services.chooseFont(current, this);
    if (!chosen || *chosen == m_records.main.FontType)
        return;
    m_records.main.FontType = *chosen;
    saveMain();
    m_pageFont->setToolTip(*chosen);
    m_pageFontExample->setFont(QFont(*chosen, 12));
}
