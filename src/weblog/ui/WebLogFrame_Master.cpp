#include "WebLogFrame.h"

#include "Settings.h"
#include "SettingsKeys.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace {

struct MasterColour
{
    const char *name;
    const char *caption;
    const QString &key;
    const char *fallback; // the box's own default, used only when the key is gone
};
const MasterColour MasterColours[3] = {
    {"MasterBackgroundColor", "Page Background Color", SettingKey::MstrBGColor, "#000000"},
    {"MasterTitleColor", "Title Color of new Web Logs", SettingKey::MstrTitleColor, "#FFFFFF"},
    {"MasterTextColor", "Text Color of new Web Logs", SettingKey::MstrTextColor, "#FFFFFF"},
};

} // namespace

QWidget *WebLogFrame::buildMasterPage()
{
    auto *page = new QWidget(this);
    auto *row = new QHBoxLayout(page);

    auto *list = new QGroupBox(QStringLiteral("List of Web Log Pages"), page);
    auto *listColumn = new QVBoxLayout(list);
    m_file6[1] = new QListWidget(list);
    m_file6[1]->setObjectName(QStringLiteral("File6_1"));
    m_file6[1]->setSelectionMode(QAbstractItemView::MultiSelection);
    listColumn->addWidget(m_file6[1], 1);
    auto *selectAll = new QPushButton(QStringLiteral("Select All"), list);
    selectAll->setObjectName(QStringLiteral("SelectAllBlogPageButton"));
    m_buildMaster = new QPushButton(QStringLiteral("Build a Master Web Log Page"), list);
    m_buildMaster->setObjectName(QStringLiteral("BuildMasterBlogButton"));
    for (QPushButton *button : {selectAll, m_buildMaster}) {
        button->setMinimumHeight(32);
        listColumn->addWidget(button);
    }
    row->addWidget(list, 3);

    auto *looks = new QGroupBox(QStringLiteral("Look of the master page"), page);
    auto *form = new QFormLayout(looks);
    for (int i = 0; i < 3; ++i) {
        auto *box = new QPushButton(QStringLiteral("Click Here to Change"), looks);
        box->setObjectName(QString::fromLatin1(MasterColours[i].name));
        box->setMinimumHeight(30);
        form->addRow(QString::fromLatin1(MasterColours[i].caption), box);
        m_masterColours[static_cast<size_t>(i)] = box;
        showColourBox(
            box, GetSetting(MasterColours[i].key, QString::fromLatin1(MasterColours[i].fallback)));
        connect(box, &QPushButton::clicked, this, [this, i] { masterColour_Click(i); });
    }
    m_masterFont = new QPushButton(QStringLiteral("Click Here to Change"), looks);
    m_masterFont->setObjectName(QStringLiteral("MasterFont"));
    m_masterFont->setMinimumHeight(30);
    form->addRow(QStringLiteral("Page Font"), m_masterFont);
    const QString font = GetSetting(SettingKey::MstrFont, QStringLiteral("Arial"));
    m_masterFontExample = new QLabel(QStringLiteral("Font Example (ABC abc)"), looks);
    m_masterFontExample->setObjectName(QStringLiteral("MasterFontExample"));
    m_masterFontExample->setFont(QFont(font.isEmpty() ? QStringLiteral("Arial") : font, 12));
    m_masterFont->setToolTip(font);
    form->addRow(QString(), m_masterFontExample);
    row->addWidget(looks, 2);

    connect(selectAll, &QPushButton::clicked, this, &WebLogFrame::SelectAllBlogPageButton_Click);
    connect(m_masterFont, &QPushButton::clicked, this, &WebLogFrame::MasterFont_Click);
    return page;
}

void WebLogFrame::SelectAllBlogPageButton_Click()
{
    m_file6[1]->selectAll();
}

void WebLogFrame::masterColour_Click(int index)
{
    if (!m_services.chooseColour)
        return;
    const MasterColour &colour = MasterColours[index];
    const QString current = GetSetting(colour.key, QString::fromLatin1(colour.fallback));
    const std::optional<QString> chosen = m_services.chooseColour(current, this);
    if (!chosen)
        return;
    SaveSetting(colour.key, *chosen);
    showColourBox(m_masterColours[static_cast<size_t>(index)], *chosen);
}

void WebLogFrame::MasterFont_Click()
{
    if (!m_services.chooseFont)
        return;
    QString current = GetSetting(SettingKey::MstrFont, QStringLiteral("Arial"));
    if (current.isEmpty())
        current = QStringLiteral("Arial");
    const std::optional<QString> chosen = m_services.chooseFont(current, this);
    if (!chosen || *chosen == current)
        return;
    SaveSetting(SettingKey::MstrFont, *chosen);
    m_masterFont->setToolTip(*chosen);
    m_masterFontExample->setFont(QFont(*chosen, 12));
}
