#include "frmFont.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QVBoxLayout>

namespace {

const QString exampleText = QStringLiteral("Font Example (ABC abc)");

QFont exampleFont(const QString &family)
{
    QFont font(family);
    font.setPointSize(12);
    return font;
}

} // namespace

QStringList frmFont::FamiliesOfType(int fontType)
{
    QStringList families;
    if (fontType != 4 && fontType != 1)
        return families; // no device or vector fonts here
    for (const QString &family : QFontDatabase::families()) {
        if (QFontDatabase::isPrivateFamily(family))
            continue;
        const bool scalable = QFontDatabase::isSmoothlyScalable(family);
        if ((fontType == 4) == scalable)
            families.append(family);
    }
    return families;
}

frmFont::frmFont(const QString &SelectedFont, QWidget *parent)
    : QDialog(parent), m_selectedFont(SelectedFont)
{
    setObjectName(QStringLiteral("frmFont"));
    setWindowTitle(QStringLiteral("Select a font"));
    setWindowModality(Qt::WindowModal);

    auto *types = new QGroupBox(this);
    auto *typesLayout = new QVBoxLayout(types);
    const std::pair<int, const char *> options[4] = {
        {4, "TrueType Fonts"}, {2, "Device fonts"}, {1, "Roster fonts"}, {0, "Vector fonts"}};
    for (const auto &[index, caption] : options) {
        auto *option = new QRadioButton(QLatin1String(caption), types);
        option->setObjectName(QStringLiteral("Option1_%1").arg(index));
        connect(option, &QRadioButton::clicked, this, [this, i = index] { Option1_Click(i); });
        typesLayout->addWidget(option);
        m_options[index] = option;
    }
    m_options[4]->setChecked(true);

    m_command1 = new QPushButton(this);
    m_command1->setObjectName(QStringLiteral("Command1"));
    connect(m_command1, &QPushButton::clicked, this, &frmFont::Command1_Click);
    typesLayout->addWidget(m_command1);

    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("SystemFontList"));
    m_list->setMinimumSize(220, 200);
    connect(m_list, &QListWidget::itemClicked, this, &frmFont::SystemFontList_Click);
    connect(m_list, &QListWidget::currentRowChanged, this, &frmFont::SystemFontList_Click);

    m_currentFont = new QLabel(m_selectedFont, this);
    m_currentFont->setObjectName(QStringLiteral("CurrentFont"));
    m_currentExample = new QLabel(exampleText, this);
    m_currentExample->setObjectName(QStringLiteral("CurrentExample"));
    m_currentExample->setFont(exampleFont(m_selectedFont));
    m_newFont = new QLabel(m_selectedFont, this);
    m_newFont->setObjectName(QStringLiteral("NewFontSelected"));
    m_newExample = new QLabel(exampleText, this);
    m_newExample->setObjectName(QStringLiteral("NewExample"));
    m_newExample->setFont(exampleFont(m_selectedFont));

    auto *shown = new QGridLayout;
    shown->addWidget(new QLabel(QStringLiteral("Current font:"), this), 0, 0);
    shown->addWidget(m_currentFont, 0, 1);
    shown->addWidget(m_currentExample, 1, 0, 1, 2);
    shown->addWidget(new QLabel(QStringLiteral("New font:"), this), 2, 0);
    shown->addWidget(m_newFont, 2, 1);
    shown->addWidget(m_newExample, 3, 0, 1, 2);
    shown->setColumnStretch(1, 1);

    auto *ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("OKButton"));
    ok->setDefault(true);
    auto *cancel = new QPushButton(QStringLiteral("Cancel"), this);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    connect(ok, &QPushButton::clicked, this, &frmFont::OKButton_Click);
    connect(cancel, &QPushButton::clicked, this, &frmFont::CancelButton_Click);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);

    auto *left = new QVBoxLayout;
    left->addWidget(types);
    left->addLayout(shown);
    left->addStretch(1);
    auto *columns = new QHBoxLayout;
    columns->addLayout(left);
    columns->addWidget(m_list, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addLayout(buttons);

    m_fontTypeWanted = 4;
    m_command1->setText(QStringLiteral("Enum ") + m_options[4]->text());
    Command1_Click();

    adjustSize();
    if (const QScreen *screen = parent ? parent->screen() : QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + (area.height() - height()) / 2);
    }
}

void frmFont::Option1_Click(int index)
{
    m_fontTypeWanted = index;
    m_command1->setText(QStringLiteral("Enum ") + m_options[index]->text());
}

void frmFont::Command1_Click()
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    m_list->addItems(FamiliesOfType(m_fontTypeWanted));
}

void frmFont::SystemFontList_Click()
{
    const QListWidgetItem *item = m_list->currentItem();
    if (!item)
        return;
    m_newFont->setText(item->text());
    m_newExample->setFont(exampleFont(item->text()));
}

void frmFont::OKButton_Click()
{
    m_selectedFont = m_newFont->text();
    accept();
}

void frmFont::CancelButton_Click()
{
    m_selectedFont = m_currentFont->text();
    reject();
}
