#include "InstructionForm.h"

#include "Settings.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace {

struct PageText
{
    const char *form;
    const char *key;
    const char *title;
    const char *menu;
    std::initializer_list<const char *> steps;
};

const PageText Pages[] = {
    {"InstructionPagePhoto",
     "PhotoIntructionView",
     "Send a Photo Page",
     "Send a Photo Page Instructions",
     {"Select the 'Select Images' tab and click on 'Select Photo Directory' button. Select the "
      "images that you would like to upload. Click on the 'Copy' button to copy the image to the "
      "'Ready to Send' file.",
      "Once all images have been chosen and copied, select the button labeled 'Tarnwick Build All "
      "and Send to your Site'.",
      "The system will prompt you for the necessary information. Respond to all the prompts.",
      "Once the upload is complete, copy the Web site pointer to an email using the Paste "
      "command. Be sure that the email program is set to HTML format or this step will not work "
      "correctly.",
      "After a file has been uploaded, you may realize the page need editiing. This is done by "
      "selecting the tab 'Update Photo Page'. The History file must be selected before editing "
      "can begin.",
      "The 'Settings' tab allows you to personalize the page and change the sizes of the upload "
      "images. These functions are independent of page content and will effect the page once it "
      "is uploaded."}},
    {"InstructionPageBackup",
     "BackupInstructionView",
     "Backup Files",
     "Backup Files Instructions",
     {"Important files that should be uploaded to your website can be selected by clicking on the "
      "'Add New Files to Backup' button.",
      "Click on a file name in the list to view its current status. ",
      "If the file has changed since the last backup, the text in the boxes will turn red.",
      "If the file does not need updating, the text in the boxes will be green. ",
      "If a file cannot be found, the location path will turn red.",
      "You can either remove the file or search for the new file location.",
      "Select scan to search through the list and backup the files as needed."}},
    {"InstructionPageSendFile",
     "SendFileInstructionView",
     "Send a File",
     "Send a File Instructions",
     {"Find the file you want to send by clicking on the button labeled ",
      "The file will be uploaded to the directory listed in the text box labeled ",
      "The pointer to this file is then ready to send via email either using the 'Take an "
      "Action' button or using the Paste command 'Ctrl v'."}},
    {"InstructionPageBlog",
     "BlogIntructionView",
     "Build a Web Log",
     "Web Log Instructions",
     {"Fill in all of the information and add a picture and add more articles as desired.",
      "Create a subtitle for this section and enter all desired information into the text field. "
      "Add a picture and add more Sections, as desired. Changes to the font attributes, using the "
      "Center, Bold, Italics, or Underline  buttons, will be tagged on this page, but will appear "
      "on the Preview and the final web upload.",
      "Select the 'Build Web Log' button. This copies the page to your web space & creates a "
      "pointer, which can be added to an email or a document.",
      "By returning to the tab labeled ", "Explore the options for each section (such as the "}},
    {"InstructionPagePortal",
     "PortalIntructionView",
     "Build a Portal",
     "Portal Instructions",
     {"This page contains defaults that can be used in your portal page. Click on each category "
      "to scan the existing list of page links. Remove any of the pointers that you think you "
      "will not use.",
      " Add any new pointers that you would like to use. Entire categories and all associated "
      "page links can be removed by deleting a category.",
      "After clicking on the add new button, you will be prompted for the necessary information.",
      "The bullets can be used to highlight different pointers. Default bullets are created for "
      "each pointer. To select a unique bullet, click on the page link you wish to highlight. "
      "Then click on the bullet you wish to use. This bullet will appear on the final page.",
      "A logo can be added to your portal page. Use the search button to locate the desired "
      "picture from anywhere on your computer. The page colors and font can be adjusted to your "
      "own preference. Click on each box to select different options.",
      "To view the portal page, simply click on the preview button. The functional portal page "
      "will appear.",
      "After reviewing the preview page, close the window to return to the Build A Portal page. "
      "Make any desired changes and preview the page as many times as needed. Use the Build Home "
      "Portal Page button to create a final copy. At the end of the build, you have the option to "
      "copy the page up to your web space or keep it locally on your drive. The pointer will be "
      "saved in the clipboard. When selecting ei"}},
    {"InstructionPageFTPControls",
     "FTPControlInstructionView",
     "FTP Control & Settings",
     "FTP Controls Instructions",
     {"FTP Controls and Settings have two functions. One function is to browse your web space and "
      "the other is to setup  Tarnwick.",
      "To browse your web space , click on the ",
      "Once connected, you can navigate your web space through double clicking on a folder to "
      "enter the folder or double clicking on the folder with the '..' at the top of the list to "
      "move out of the folder. The text above the table confirms the path to your current "
      "location.",
      "Several buttons indicating various options that can be performed in your web space appear "
      "below the table.",
      "Refer to the manual for more information on utilizing the Advanced  Settings."}},
};

constexpr int StepsWidth = 520;

const PageText &page(int index)
{
    return Pages[qBound(0, index, 5)];
}

// A small sample of a step ring for the legend.
QLabel *ringSample(const QColor &colour, QWidget *parent)
{
    QPixmap pixmap(QSize(34, 22) * parent->devicePixelRatioF());
    pixmap.setDevicePixelRatio(parent->devicePixelRatioF());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour.darker(115), 3));
    painter.drawRoundedRect(QRectF(2, 2, 30, 18), 5, 5);
    painter.end();
    auto *label = new QLabel(parent);
    label->setPixmap(pixmap);
    return label;
}

} // namespace

QString InstructionForm::settingKey(int index)
{
    return QString::fromLatin1(page(index).key);
}
QString InstructionForm::formName(int index)
{
    return QString::fromLatin1(page(index).form);
}
QString InstructionForm::menuText(int index)
{
    return QString::fromLatin1(page(index).menu);
}

QStringList InstructionForm::steps(int index)
{
    QStringList texts;
    for (const char *step : page(index).steps)
        texts << QString::fromLatin1(step);
    return texts;
}

InstructionForm::InstructionForm(int index, QWidget *parent, std::function<void()> moreHelp)
    : QDialog(parent), m_index(index)
{
    setObjectName(formName(index));
    setWindowTitle(QString::fromLatin1(page(index).title) + QStringLiteral(" - Instructions"));
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    setAutoFillBackground(true);
    QPalette card = palette();
    card.setColor(QPalette::Window, Qt::white);
    setPalette(card);

    auto *heading = new QLabel(QString::fromLatin1(page(index).title), this);
    QFont headingFont = heading->font();
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.4);
    headingFont.setBold(true);
    heading->setFont(headingFont);
    heading->setStyleSheet(QStringLiteral("color: #2b4a7a;"));

    auto *stepsWidget = new QWidget;
    auto *grid = new QGridLayout(stepsWidget);
    grid->setContentsMargins(0, 0, 6, 0);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(10);
    const QStringList texts = steps(index);
    for (int i = 0; i < texts.size(); ++i) {
        auto *number = new QLabel(QString::number(i + 1) + QLatin1Char('.'), stepsWidget);
        number->setAlignment(Qt::AlignRight | Qt::AlignTop);
        number->setStyleSheet(QStringLiteral("font-weight: bold; color: #2b4a7a;"));
        auto *text = new QLabel(texts.at(i), stepsWidget);
        text->setObjectName(QStringLiteral("Step_%1").arg(i));
        text->setWordWrap(true);
        text->setTextFormat(Qt::PlainText);
        text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        grid->addWidget(number, i, 0);
        grid->addWidget(text, i, 1);
    }
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(static_cast<int>(texts.size()), 1);

    auto *scroll = new QScrollArea(this);
    scroll->setWidget(stepsWidget);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto *legend = new QHBoxLayout;
    legend->setSpacing(6);
    legend->addWidget(ringSample(QColor(0x00, 0xFF, 0x00), this));
    auto *next = new QLabel(QStringLiteral("Iindicates the next action"), this);
    next->setObjectName(QStringLiteral("NextActionLabel"));
    legend->addWidget(next);
    legend->addSpacing(18);
    legend->addWidget(ringSample(QColor(0xFF, 0xFF, 0x00), this));
    auto *final = new QLabel(QStringLiteral("Indicates the final action"), this);
    final->setObjectName(QStringLiteral("FinalActionLabel"));
    legend->addWidget(final);
    legend->addStretch();

    m_check1 =
        new QCheckBox(QStringLiteral("Show these instructions when I open this function"), this);
    m_check1->setObjectName(QStringLiteral("Check1"));
    m_check1->setChecked(GetSetting(settingKey(index), QStringLiteral("Show")) ==
                         QStringLiteral("Show"));
    connect(m_check1, &QCheckBox::clicked, this, &InstructionForm::Check1_Click);

    auto *moreHelpButton = new QPushButton(QStringLiteral("More Help"), this);
    moreHelpButton->setObjectName(QStringLiteral("MoreHelpButton"));
    moreHelpButton->setAutoDefault(false);
    connect(moreHelpButton, &QPushButton::clicked, this, [moreHelp] {
        if (moreHelp)
            moreHelp();
    });
    auto *close = new QPushButton(QStringLiteral("Close"), this);
    close->setObjectName(QStringLiteral("Command1"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_check1);
    buttons->addStretch();
    buttons->addWidget(moreHelpButton);
    buttons->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 16, 20, 14);
    layout->setSpacing(12);
    layout->addWidget(heading);
    layout->addWidget(scroll, 1);
    layout->addLayout(legend);
    layout->addLayout(buttons);

    // As tall as the steps need, within reason; the text wraps to the width.
    const int stepsHeight = grid->hasHeightForWidth() ? grid->totalHeightForWidth(StepsWidth)
                                                      : stepsWidget->sizeHint().height();
    scroll->setMinimumSize(StepsWidth + 8, qMin(stepsHeight + 4, 420));
    adjustSize();
    // Beside the work frame rather than over its middle.
    if (parent && parent->isVisible()) {
        const QRect area = parent->geometry();
        move(area.right() - width() - 32, area.top() + 96);
    }
}

void InstructionForm::Check1_Click()
{
    if (!isVisible())
        return;
    SaveSetting(settingKey(m_index),
                m_check1->isChecked() ? QStringLiteral("Show") : QStringLiteral("Hide"));
}
