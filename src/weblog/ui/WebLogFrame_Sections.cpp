#include "WebLogFrame.h"

#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "Settings.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTextCursor>

using namespace BuildBlog;

namespace {

struct TagPair
{
    const char *caption;
    const char *open;
    const char *close;
};
const TagPair Tags[4] = {
    {"Bold", "<b>", "</b>"},
    {"Center", "<Center>", "</Center>"},
    {"Underline", "<u>", "</u>"},
    {"Italics", "<i>", "</i>"},
};

const char *const CheckCaptions[4] = {"Show Author", "Show Date", "Show Comment Pointer",
                                      "Show Line"};

} // namespace

QWidget *WebLogFrame::buildSectionsPage()
{
    auto *page = new QWidget(this);
    auto *stack = new QVBoxLayout(page);
    stack->setContentsMargins(0, 0, 0, 0);

    // The list of sections.
    m_itemSelectFrame = new QFrame(page);
    m_itemSelectFrame->setObjectName(QStringLiteral("BlogItemSelectFrame"));
    auto *listRow = new QHBoxLayout(m_itemSelectFrame);
    auto *listColumn = new QVBoxLayout;
    listColumn->addWidget(new QLabel(QStringLiteral("Sections of this Web Log"), page));
    m_file5 = new QListWidget(m_itemSelectFrame);
    m_file5->setObjectName(QStringLiteral("File5"));
    listColumn->addWidget(m_file5, 1);
    listRow->addLayout(listColumn, 2);
    auto *listButtons = new QVBoxLayout;
    const auto button = [](QWidget *parent, QLayout *layout, const char *name,
                           const char *caption) {
        auto *made = new QPushButton(QString::fromLatin1(caption), parent);
        made->setObjectName(QString::fromLatin1(name));
        made->setMinimumHeight(32);
        layout->addWidget(made);
        return made;
    };
    QPushButton *add = button(m_itemSelectFrame, listButtons, "BlogAddItem", "Add a New Section");
    QPushButton *open =
        button(m_itemSelectFrame, listButtons, "OpenSection", "Open Selected Section");
    QPushButton *remove =
        button(m_itemSelectFrame, listButtons, "BlogRemove", "Remove this Section");
    listButtons->addStretch(1);
    listRow->addLayout(listButtons, 1);
    stack->addWidget(m_itemSelectFrame, 1);

    // The editor of one section.
    m_editFrame = new QFrame(page);
    m_editFrame->setObjectName(QStringLiteral("BlogEditFrame"));
    auto *grid = new QGridLayout(m_editFrame);
    auto *fields = new QFormLayout;
    const auto field = [&](const char *name, const char *caption) {
        auto *made = new QLineEdit(m_editFrame);
        made->setObjectName(QString::fromLatin1(name));
        fields->addRow(QString::fromLatin1(caption), made);
        return made;
    };
    m_displayedSubTitle = field("DisplayedSubTitle", "Subtitle for This Section");
    m_blogItemDate = field("BlogItemDate", "Item Date");
    m_blogAuthor = field("BlogAuthor", "Author");
    m_orderItem = field("OrderItem", "Order on Page");
    m_orderItem->setMaximumWidth(80);
    m_orderItem->installEventFilter(this);
    grid->addLayout(fields, 0, 0);

    auto *tags = new QHBoxLayout;
    for (int i = 0; i < 4; ++i) {
        auto *tag = new QPushButton(QString::fromLatin1(Tags[i].caption), m_editFrame);
        tag->setObjectName(QStringLiteral("Command7_%1").arg(i));
        tag->setToolTip(
            QStringLiteral("Marks the highlighted text with %1 %2")
                .arg(QString::fromLatin1(Tags[i].open), QString::fromLatin1(Tags[i].close)));
        connect(tag, &QPushButton::clicked, this, [this, i] { Command7_Click(i); });
        tags->addWidget(tag);
    }
    tags->addStretch(1);
    grid->addLayout(tags, 1, 0);
    m_blogText = new QPlainTextEdit(m_editFrame);
    m_blogText->setObjectName(QStringLiteral("BlogText"));
    m_blogText->setPlaceholderText(QStringLiteral("Enter Web Log Info Here"));
    grid->addWidget(m_blogText, 2, 0, 3, 1);

    auto *picture = new QVBoxLayout;
    m_blogImage = new QLabel(m_editFrame);
    m_blogImage->setObjectName(QStringLiteral("BlogImage"));
    m_blogImage->setFixedSize(240, 180);
    m_blogImage->setAlignment(Qt::AlignCenter);
    m_blogImage->setFrameShape(QFrame::StyledPanel);
    picture->addWidget(m_blogImage);
    auto *pictureButtons = new QHBoxLayout;
    QPushButton *browse = button(m_editFrame, pictureButtons, "BlogBrowsePic", "Browse for Image");
    QPushButton *clear = button(m_editFrame, pictureButtons, "ClearBlogPicture", "Clear Picture");
    picture->addLayout(pictureButtons);
    auto *pictureFields = new QFormLayout;
    m_blogPictureTitle = new QLineEdit(m_editFrame);
    m_blogPictureTitle->setObjectName(QStringLiteral("BlogPictureTitle"));
    pictureFields->addRow(QStringLiteral("Picture Title"), m_blogPictureTitle);
    picture->addLayout(pictureFields);
    m_option1 = new QRadioButton(QStringLiteral("Display Left"), m_editFrame);
    m_option1->setObjectName(QStringLiteral("Option1"));
    m_option2 = new QRadioButton(QStringLiteral("Display Right"), m_editFrame);
    m_option2->setObjectName(QStringLiteral("Option2"));
    auto *sides = new QHBoxLayout;
    sides->addWidget(m_option1);
    sides->addWidget(m_option2);
    picture->addLayout(sides);
    for (int i = 0; i < 4; ++i) {
        auto *check = new QCheckBox(QString::fromLatin1(CheckCaptions[i]), m_editFrame);
        check->setObjectName(QStringLiteral("ShowBLogCheck_%1").arg(i));
        m_showChecks[static_cast<size_t>(i)] = check;
        picture->addWidget(check);
        connect(check, &QCheckBox::toggled, this, &WebLogFrame::sectionFieldEdited);
    }
    picture->addStretch(1);
    QPushButton *another = button(m_editFrame, picture, "BlogSelectItem", "Select Another Section");
    grid->addLayout(picture, 0, 1, 5, 1);
    grid->setColumnStretch(0, 3);
    grid->setRowStretch(2, 1);
    stack->addWidget(m_editFrame, 1);
    m_editFrame->hide();

    connect(add, &QPushButton::clicked, this, &WebLogFrame::BlogAddItem_Click);
    connect(open, &QPushButton::clicked, this, &WebLogFrame::OpenSection_Click);
    connect(remove, &QPushButton::clicked, this, &WebLogFrame::BlogRemove_Click);
    connect(another, &QPushButton::clicked, this, &WebLogFrame::BlogSelectItem_Click);
    connect(browse, &QPushButton::clicked, this, &WebLogFrame::BlogBrowsePic_Click);
    connect(clear, &QPushButton::clicked, this, &WebLogFrame::ClearBlogPicture_Click);
    connect(m_file5, &QListWidget::itemClicked, this, [this] { File5_Click(); });
    connect(m_file5, &QListWidget::itemDoubleClicked, this, [this] {
        File5_Click();
        if (!m_uploadList) {
            showSectionEditor(true);
            shapeEvent(24);
        }
    });
    for (QLineEdit *edit : {m_displayedSubTitle, m_blogItemDate, m_blogAuthor})
        connect(edit, &QLineEdit::textEdited, this, &WebLogFrame::sectionFieldEdited);
    connect(m_blogPictureTitle, &QLineEdit::textEdited, this, [this] {
        sectionFieldEdited();
        shapeEvent(14);
    });
    connect(m_option1, &QRadioButton::toggled, this, &WebLogFrame::sectionFieldEdited);
    connect(m_blogText, &QPlainTextEdit::textChanged, this, [this] {
        if (m_filling)
            return;
        // A "|" can't go into the text, typed or pasted.
        const QString text = m_blogText->toPlainText();
        if (text.contains(QLatin1Char('|'))) {
            QTextCursor cursor = m_blogText->textCursor();
            const int position = cursor.position();
            const int before = int(text.left(position).count(QLatin1Char('|')));
            m_filling = true;
            m_blogText->setPlainText(QString(text).remove(QLatin1Char('|')));
            m_filling = false;
            cursor = m_blogText->textCursor();
            cursor.setPosition(position - before);
            m_blogText->setTextCursor(cursor);
        }
        sectionFieldEdited();
        shapeEvent(14);
    });
    return page;
}

void WebLogFrame::showSectionEditor(bool show)
{
    m_itemSelectFrame->setVisible(!show);
    m_editFrame->setVisible(show);
}

void WebLogFrame::refreshSections()
{
    if (m_uploadList)
        return;
    const QString selected = selectedName(m_file5);
    fillList(m_file5, BlogFileList(WebLogFolder(m_records.main.FileName), QStringLiteral("*.blg")));
    if (const auto found = m_file5->findItems(selected, Qt::MatchExactly); !found.isEmpty())
        found.first()->setSelected(true);
}

void WebLogFrame::showUploadFiles(const QStringList &files)
{
    m_uploadList = true;
    showSectionEditor(false);
    fillList(m_file5, files);
}

void WebLogFrame::showSectionList()
{
    m_uploadList = false;
    refreshSections();
}

void WebLogFrame::File5_Click()
{
    if (m_uploadList)
        return;
    const QString entry = selectedName(m_file5);
    if (entry.isEmpty())
        return;
    BlogText_LostFocus();
    ClearBlogSection(m_records);
    m_records.section.SubTitle = EntryName(entry);
    m_records.section.FileName = m_records.main.FileName;
    if (!LoadBlogSection(m_records)) {
        message(QStringLiteral("The section \"%1\" can't be read; the list is read again.")
                    .arg(EntryName(entry)));
        ClearBlogSection(m_records);
        refreshSections();
        return;
    }
    fillSectionControls();
    shapeEvent(23);
}

void WebLogFrame::openSection(int row)
{
    if (row < 0 || row >= m_file5->count())
        return;
    m_file5->clearSelection();
    m_file5->setCurrentRow(row);
    m_file5->item(row)->setSelected(true);
    File5_Click();
    showSectionEditor(true);
}

void WebLogFrame::fillSectionControls()
{
    m_filling = true;
    const BlogSection &s = m_records.section;
    m_displayedSubTitle->setText(s.DisplayedSubTitle);
    m_blogItemDate->setText(s.BlogDate);
    m_blogAuthor->setText(s.Author);
    m_orderItem->setText(s.Order.isEmpty() ? QStringLiteral("0") : s.Order);
    m_blogText->setPlainText(ToBoxText(s.BlogText));
    m_blogPictureTitle->setText(s.PhotoTitle);
    if (s.Position == QLatin1String("Right"))
        m_option2->setChecked(true);
    else
        m_option1->setChecked(true);
    const QString *shows[4] = {&s.ShowAuthor, &s.ShowDate, &s.ShowComment, &s.ShowLine};
    for (int i = 0; i < 4; ++i)
        m_showChecks[static_cast<size_t>(i)]->setChecked(*shows[i] != QLatin1String("False"));
    m_blogText->setStyleSheet(QStringLiteral("QPlainTextEdit { color: %1; }")
                                  .arg(m_records.main.SubTextColor.isEmpty()
                                           ? QStringLiteral("#000000")
                                           : m_records.main.SubTextColor));
    showPicture();
    m_filling = false;
}

void WebLogFrame::showCurrentRecords()
{
    if (m_records.main.FileName.isEmpty())
        return;
    fillMainControls();
    if (m_records.section.SubTitle.isEmpty())
        return;
    const auto found =
        m_file5->findItems(m_records.section.SubTitle + QStringLiteral(".blg"), Qt::MatchExactly);
    if (!found.isEmpty()) {
        const QSignalBlocker block(m_file5);
        m_file5->clearSelection();
        found.first()->setSelected(true);
        m_file5->setCurrentItem(found.first());
    }
    fillSectionControls();
}

void WebLogFrame::showPicture()
{
    m_blogImage->clear();
    const QString path = m_records.section.PhotoPath.trimmed();
    if (path.isEmpty())
        return;
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    if (full.isValid())
        reader.setScaledSize(full.scaled(m_blogImage->size(), Qt::KeepAspectRatio));
    const QImage image = reader.read();
    if (image.isNull())
        m_blogImage->setText(QStringLiteral("The picture can't be shown:\n") +
                             QFileInfo(path).fileName());
    else
        m_blogImage->setPixmap(QPixmap::fromImage(image));
}

void WebLogFrame::sectionFieldEdited()
{
    if (m_filling || m_records.section.SubTitle.isEmpty())
        return;
    BlogSection &s = m_records.section;
    s.DisplayedSubTitle = m_displayedSubTitle->text();
    s.BlogDate = m_blogItemDate->text();
    s.Author = m_blogAuthor->text();
    s.BlogText = ToRecordText(m_blogText->toPlainText());
    s.PhotoTitle = m_blogPictureTitle->text();
    s.Position = m_option2->isChecked() ? QStringLiteral("Right") : QStringLiteral("Left");
    QString *shows[4] = {&s.ShowAuthor, &s.ShowDate, &s.ShowComment, &s.ShowLine};
    for (int i = 0; i < 4; ++i)
        *shows[i] = BoolText(m_showChecks[static_cast<size_t>(i)]->isChecked());
    saveSection();
}

void WebLogFrame::saveSection()
{
    if (m_records.section.SubTitle.isEmpty() || m_records.main.FileName.isEmpty())
        return;
    m_records.section.FileName = m_records.main.FileName;
    SaveBlogSection(m_records);
}

void WebLogFrame::BlogText_LostFocus()
{
    if (m_filling || m_records.section.SubTitle.isEmpty() || !m_editFrame->isVisible())
        return;
    const QString text = ToRecordText(m_blogText->toPlainText());
    if (text == m_records.section.BlogText)
        return;
    m_records.section.BlogText = text;
    saveSection();
}

void WebLogFrame::BlogAddItem_Click()
{
    if (!webLogOpen()) {
        message(QStringLiteral("You need to select or create a page to view."));
        return;
    }
    const QString stamp = QStringLiteral("Section ") + DateStamp();
    QString answer = ask(QStringLiteral("Enter a subtitle for this Web Log section. (This is also "
                                        "a section file name.)"),
                         stamp);
    if (answer == JobState::Blank)
        answer = stamp;
    if (answer == JobState::Skip)
        return;
    const QString name = CleanFileName(answer);
    if (name.trimmed().isEmpty())
        return;
    BlogText_LostFocus();
    if (QFileInfo(SectionRecordPath(m_records.main.FileName, name)).isFile()) {
        message(QStringLiteral("There is a section named \"%1\" already; it is opened.").arg(name));
    } else {
        ClearBlogSection(m_records);
        BlogSection &s = m_records.section;
        s.Author = m_defaultAuthor->text();
        s.SubTitle = name;
        s.DisplayedSubTitle = answer;
        s.FileName = m_records.main.FileName;
        s.BlogDate = PresentDate();
        s.Position = QStringLiteral("Left");
        s.SubTileFont = QStringLiteral("Arial");
        s.Order = QStringLiteral("0");
        saveSection();
    }
    refreshSections();
    const auto found = m_file5->findItems(name + QStringLiteral(".blg"), Qt::MatchExactly);
    if (!found.isEmpty())
        openSection(m_file5->row(found.first()));
    shapeEvent(24);
}

void WebLogFrame::OpenSection_Click()
{
    if (m_uploadList)
        return;
    if (selectedName(m_file5).isEmpty()) {
        message(QStringLiteral("Need to select a section first."),
                QStringLiteral("Need to know..."));
        return;
    }
    File5_Click();
    showSectionEditor(true);
    shapeEvent(24);
}

void WebLogFrame::BlogSelectItem_Click()
{
    BlogText_LostFocus();
    showSectionEditor(false);
    refreshSections();
    shapeEvent(23);
}

void WebLogFrame::BlogRemove_Click()
{
    const QString entry = selectedName(m_file5);
    if (entry.isEmpty() || m_uploadList) {
        message(QStringLiteral("Need to select a section first."),
                QStringLiteral("Need to know..."));
        return;
    }
    if (!confirm(QStringLiteral("Are you sure you what to remove this section from this page? "
                                "(This cannot be undone.)")))
        return;
    DoKill(WebLogFolder(m_records.main.FileName) + QLatin1Char('/') + entry);
    if (m_records.section.SubTitle == EntryName(entry))
        ClearBlogSection(m_records);
    refreshSections();
}

void WebLogFrame::Command7_Click(int index)
{
    QTextCursor cursor = m_blogText->textCursor();
    if (!cursor.hasSelection()) {
        message(QStringLiteral("Highlight a section of text, then select this button"));
        return;
    }
    const TagPair &tag = Tags[index];
    const QString marked =
        cursor.selectedText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    cursor.insertText(QString::fromLatin1(tag.open) + marked + QString::fromLatin1(tag.close));
    m_blogText->setTextCursor(cursor);
}

void WebLogFrame::OrderItem_LostFocus()
{
    if (m_filling || m_records.section.SubTitle.isEmpty())
        return;
    const double value = NumberValue(m_orderItem->text());
    if (value > m_file5->count()) {
        message(QStringLiteral("The Order number is greater than the number of sections in the "
                               "list. Please reenter (0 is default)."));
        m_orderItem->setText(QStringLiteral("0"));
        m_orderItem->selectAll();
        return;
    }
    // The page places whole numbers from 0 up; anything else would leave the section out.
    const QString order = m_orderItem->text().trimmed().isEmpty()
                              ? QStringLiteral("0")
                              : QString::number(std::max(0, int(value)));
    m_orderItem->setText(order);
    if (order != m_records.section.Order) {
        m_records.section.Order = order;
        saveSection();
    }
}

void WebLogFrame::BlogBrowsePic_Click()
{
    if (!m_services.choosePicture || m_records.section.SubTitle.isEmpty())
        return;
    const QString current = m_records.section.PhotoPath.trimmed();
    const QString path =
        m_services.choosePicture(current.isEmpty() ? QString() : QFileInfo(current).path());
    if (!path.isEmpty())
        setSectionPicture(path);
}

void WebLogFrame::setSectionPicture(const QString &path)
{
    if (m_records.section.SubTitle.isEmpty())
        return;
    m_records.section.PhotoPath = path;
    saveSection();
    showPicture();
    shapeEvent(14);
}

void WebLogFrame::ClearBlogPicture_Click()
{
    if (!confirm(QStringLiteral("Are you sure you want to clear this image? This can not be "
                                "undone."),
                 QStringLiteral("Need to know..")))
        return;
    m_records.section.PhotoPath.clear();
    m_blogImage->clear();
    saveSection();
}
