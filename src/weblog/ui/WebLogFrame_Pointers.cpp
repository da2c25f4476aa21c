#include "WebLogFrame.h"

#include "BlogMaster.h"
#include "Folders.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace BuildBlog;

QWidget *WebLogFrame::buildPointersPage()
{
    auto *page = new QWidget(this);
    auto *column = new QVBoxLayout(page);
    auto *row = new QHBoxLayout;
    const auto button = [](QWidget *parent, QLayout *layout, const char *name,
                           const char *caption) {
        auto *made = new QPushButton(QString::fromLatin1(caption), parent);
        made->setObjectName(QString::fromLatin1(name));
        made->setMinimumHeight(30);
        layout->addWidget(made);
        return made;
    };

    auto *pointers = new QGroupBox(QStringLiteral("Pointers (links beside the sections)"), page);
    auto *pointerColumn = new QVBoxLayout(pointers);
    pointerColumn->addWidget(new QLabel(QStringLiteral("(Click to Select)"), pointers));
    m_file8 = new QListWidget(pointers);
    m_file8->setObjectName(QStringLiteral("File8"));
    pointerColumn->addWidget(m_file8, 1);
    auto *pointerFields = new QFormLayout;
    const auto field = [&](const char *name, const char *caption) {
        auto *made = new QLineEdit(pointers);
        made->setObjectName(QString::fromLatin1(name));
        made->setEnabled(false);
        pointerFields->addRow(QString::fromLatin1(caption), made);
        return made;
    };
    m_ptrCategory = field("PtrCategoryTxt", "Category");
    m_dispName = field("DispNameTxt", "Displayed Label");
    m_ptrUrl = field("PtrURLTxt", "URL");
    pointerColumn->addLayout(pointerFields);
    auto *pointerButtons = new QHBoxLayout;
    QPushButton *addPointer = button(pointers, pointerButtons, "AddNewPtrButton", "Add New");
    QPushButton *deletePointer = button(pointers, pointerButtons, "PtrDeleteButton", "Delete");
    QPushButton *fromMaster =
        button(pointers, pointerButtons, "CopyFromMstrPtrButton", "Copy From Master");
    pointerColumn->addLayout(pointerButtons);
    m_showPointersCk = new QCheckBox(QStringLiteral("Display Pointers"), pointers);
    m_showPointersCk->setObjectName(QStringLiteral("ShowPointersCk"));
    pointerColumn->addWidget(m_showPointersCk);
    row->addWidget(pointers, 1);

    auto *comments = new QGroupBox(QStringLiteral("Comments"), page);
    auto *commentColumn = new QVBoxLayout(comments);
    commentColumn->addWidget(new QLabel(QStringLiteral("(Click to Select)"), comments));
    m_file9 = new QListWidget(comments);
    m_file9->setObjectName(QStringLiteral("File9"));
    commentColumn->addWidget(m_file9, 1);
    commentColumn->addWidget(new QLabel(QStringLiteral("Comment Text"), comments));
    m_commentTxt = new QPlainTextEdit(comments);
    m_commentTxt->setObjectName(QStringLiteral("CommentTxt"));
    m_commentTxt->setMaximumHeight(110);
    commentColumn->addWidget(m_commentTxt);
    auto *commentButtons = new QHBoxLayout;
    QPushButton *addComment = button(comments, commentButtons, "AddNewCommentButton", "Add New");
    QPushButton *deleteComment = button(comments, commentButtons, "CommentDeleteButton", "Delete");
    commentButtons->addStretch(1);
    commentColumn->addLayout(commentButtons);
    m_showCommentCk = new QCheckBox(QStringLiteral("Display  ' View Comment'"), comments);
    m_showCommentCk->setObjectName(QStringLiteral("ShowCommentCk"));
    commentColumn->addWidget(m_showCommentCk);
    row->addWidget(comments, 1);
    column->addLayout(row, 1);

    // The pool of master pointers, over the pointers when called up.
    m_mstrPtrFrame = new QFrame(page);
    m_mstrPtrFrame->setObjectName(QStringLiteral("MstrPtrFrame"));
    m_mstrPtrFrame->setFrameShape(QFrame::StyledPanel);
    auto *poolColumn = new QVBoxLayout(m_mstrPtrFrame);
    poolColumn->addWidget(new QLabel(QStringLiteral("All Pointers Avaliable"), m_mstrPtrFrame));
    m_file10 = new QListWidget(m_mstrPtrFrame);
    m_file10->setObjectName(QStringLiteral("File10"));
    m_file10->setSelectionMode(QAbstractItemView::MultiSelection);
    poolColumn->addWidget(m_file10, 1);
    auto *poolButtons = new QHBoxLayout;
    QPushButton *copy = button(m_mstrPtrFrame, poolButtons, "Command2", "Copy");
    QPushButton *cancel = button(m_mstrPtrFrame, poolButtons, "Command3", "Cancel");
    QPushButton *deleteFromPool = button(m_mstrPtrFrame, poolButtons, "DeletePtr", "Delete");
    poolColumn->addLayout(poolButtons);
    m_mstrPtrFrame->hide();
    column->addWidget(m_mstrPtrFrame, 1);

    connect(addPointer, &QPushButton::clicked, this, &WebLogFrame::AddNewPtrButton_Click);
    connect(deletePointer, &QPushButton::clicked, this, &WebLogFrame::PtrDeleteButton_Click);
    connect(fromMaster, &QPushButton::clicked, this, &WebLogFrame::CopyFromMstrPtrButton_Click);
    connect(addComment, &QPushButton::clicked, this, &WebLogFrame::AddNewCommentButton_Click);
    connect(deleteComment, &QPushButton::clicked, this, &WebLogFrame::CommentDeleteButton_Click);
    connect(copy, &QPushButton::clicked, this, &WebLogFrame::Command2_Click);
    connect(cancel, &QPushButton::clicked, this, &WebLogFrame::Command3_Click);
    connect(deleteFromPool, &QPushButton::clicked, this, &WebLogFrame::DeletePtr_Click);
    connect(m_file8, &QListWidget::itemClicked, this, [this] { File8_Click(); });
    connect(m_file9, &QListWidget::itemClicked, this, [this] { File9_Click(); });
    connect(m_commentTxt, &QPlainTextEdit::textChanged, this, [this] {
        if (m_filling || m_records.comment.FileName.isEmpty())
            return;
        m_records.comment.Comment = ToRecordText(m_commentTxt->toPlainText());
        SaveBlogComment(m_records);
    });
    connect(m_showPointersCk, &QCheckBox::toggled, this, [this](bool on) {
        if (m_filling || !webLogOpen())
            return;
        m_records.main.ShowPointers = on ? QStringLiteral("Yes") : QStringLiteral("No");
        saveMain();
    });
    connect(m_showCommentCk, &QCheckBox::toggled, this, [this](bool on) {
        if (m_filling || !webLogOpen())
            return;
        m_records.main.ShowCommentPage = on ? QStringLiteral("Yes") : QStringLiteral("No");
        saveMain();
    });
    return page;
}

void WebLogFrame::refreshPointers()
{
    fillList(m_file8,
             BlogFileList(WebLogFolder(m_records.main.FileName) + QStringLiteral("/Pointers"),
                          QStringLiteral("*.ptr")));
}

void WebLogFrame::refreshComments()
{
    fillList(m_file9,
             BlogFileList(WebLogFolder(m_records.main.FileName) + QStringLiteral("/Comments"),
                          QStringLiteral("*.cmt")));
}

void WebLogFrame::refreshMasterPointers()
{
    fillList(m_file10, MasterPointerList());
}

void WebLogFrame::File8_Click()
{
    const QString entry = selectedName(m_file8);
    if (entry.isEmpty())
        return;
    m_records.pointer = BlogPointer();
    m_records.pointer.FileName = EntryName(entry);
    LoadBlogPointer(m_records);
    m_ptrCategory->setText(m_records.pointer.Category);
    m_dispName->setText(m_records.pointer.DisplayName);
    m_ptrUrl->setText(m_records.pointer.URL);
}

void WebLogFrame::File9_Click()
{
    const QString entry = selectedName(m_file9);
    if (entry.isEmpty())
        return;
    m_records.comment = BlogComment();
    m_records.comment.FileName = EntryName(entry);
    LoadBlogComment(m_records);
    m_filling = true;
    m_commentTxt->setPlainText(ToBoxText(m_records.comment.Comment));
    m_filling = false;
}

void WebLogFrame::AddNewPtrButton_Click()
{
    if (!webLogOpen())
        return;
    const auto stopped = [](const QString &answer) {
        return answer.isEmpty() || answer == JobState::Skip;
    };
    QString answer = ask(QStringLiteral("Enter the category for this pointer"),
                         QStringLiteral("Pointers of Interest"), 35);
    if (stopped(answer))
        return;
    const QString category = CleanFileName(answer == JobState::Blank ? QString() : answer);
    if (category.isEmpty())
        return;
    answer = ask(QStringLiteral("Enter a display name for this pointer"), QString(), 35);
    if (stopped(answer) || answer == JobState::Blank)
        return;
    const QString displayName = CleanFileName(answer);
    if (displayName.isEmpty())
        return;
    answer = ask(QStringLiteral("Enter the URL for this pointer (You can copy from the Address "
                                "field of your Internet browser)"),
                 QStringLiteral("http://"));
    if (stopped(answer) || answer == JobState::Blank)
        return;
    m_records.pointer = BlogPointer();
    m_records.pointer.Category = category;
    m_records.pointer.DisplayName = displayName;
    m_records.pointer.URL = answer.trimmed();
    m_records.pointer.FileName = category + QStringLiteral(" - ") + displayName;
    SaveBlogPointer(m_records);
    for (QLineEdit *field : {m_ptrCategory, m_dispName, m_ptrUrl})
        field->clear();
    refreshPointers();
    refreshMasterPointers();
}

void WebLogFrame::PtrDeleteButton_Click()
{
    const QString entry = selectedName(m_file8);
    if (entry.isEmpty()) {
        message(QStringLiteral("Need to select a item first."), QStringLiteral("Need to know..."));
        return;
    }
    if (!confirm(QStringLiteral("Are you sure you want to delete this pointer? (This can not be "
                                "undone.)")))
        return;
    DoKill(WebLogFolder(m_records.main.FileName) + QStringLiteral("/Pointers/") + entry);
    for (QLineEdit *field : {m_ptrCategory, m_dispName, m_ptrUrl})
        field->clear();
    refreshPointers();
}

void WebLogFrame::AddNewCommentButton_Click()
{
    if (!webLogOpen())
        return;
    const QString stamp = DateStamp();
    QString answer = ask(QStringLiteral("Enter a name for this comment"), stamp, 30);
    if (answer == JobState::Blank)
        answer = stamp;
    if (answer == JobState::Skip)
        return;
    const QString name = CleanFileName(answer);
    if (name.isEmpty())
        return;
    m_records.comment = BlogComment();
    m_records.comment.FileName = name;
    SaveBlogComment(m_records);
    m_filling = true;
    m_commentTxt->clear();
    m_filling = false;
    refreshComments();
    const auto found = m_file9->findItems(name + QStringLiteral(".cmt"), Qt::MatchExactly);
    if (!found.isEmpty()) {
        found.first()->setSelected(true);
        m_file9->setCurrentItem(found.first());
    }
    m_commentTxt->setFocus();
}

void WebLogFrame::CommentDeleteButton_Click()
{
    const QString entry = selectedName(m_file9);
    if (entry.isEmpty()) {
        message(QStringLiteral("Need to select a item first."), QStringLiteral("Need to know..."));
        return;
    }
    if (!confirm(QStringLiteral("Are you sure you want to delete this comment? (This can not be "
                                "undone.)")))
        return;
    DoKill(WebLogFolder(m_records.main.FileName) + QStringLiteral("/Comments/") + entry);
    if (m_records.comment.FileName == EntryName(entry))
        m_records.comment = BlogComment();
    m_filling = true;
    m_commentTxt->clear();
    m_filling = false;
    refreshComments();
}

void WebLogFrame::CopyFromMstrPtrButton_Click()
{
    refreshMasterPointers();
    m_mstrPtrFrame->show();
}

void WebLogFrame::Command3_Click()
{
    m_mstrPtrFrame->hide();
}

void WebLogFrame::Command2_Click()
{
    QStringList names;
    for (QListWidgetItem *item : m_file10->selectedItems())
        names << item->text();
    CopyMasterPointers(names, m_records.main.FileName);
    m_mstrPtrFrame->hide();
    refreshPointers();
}

void WebLogFrame::DeletePtr_Click()
{
    const QString entry = selectedName(m_file10);
    if (entry.isEmpty()) {
        message(QStringLiteral("Need to select a item first."));
    } else if (m_services.ui->Message(QStringLiteral("Are you sure you want to delete this "
                                                     "pointer? (This can not be undone.)"),
                                      QStringLiteral("Need to know..."), JobUi::Buttons::OkCancel,
                                      JobUi::Icon::Question) == JobUi::Answer::Ok) {
        DoKill(Folders::MasterPointerFolder() + QLatin1Char('/') + entry);
    }
    refreshMasterPointers();
}
