#include "PortalFrame.h"

#include "Folders.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "Settings.h"
#include "SettingsKeys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

using namespace BuildStartup;

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

struct ColourBox
{
    const char *name;
    const char *caption;
    const QString &key;
    const QString &fallback;
};
const std::array<ColourBox, 3> PageColours{{
    {"SUTextColor", "Page Text Color", SettingKey::SUTextColor, SettingDefault::SUTextColor},
    {"SUTitleColor", "Page Title Color", SettingKey::SUTitleColor, SettingDefault::SUTitleColor},
    {"SUBackgroundColor", "Page Background Color", SettingKey::SUBackgroundColor,
     SettingDefault::SUBackgroundColor},
}};

QPushButton *clickBox(const QString &name, QWidget *parent)
{
    auto *box = new QPushButton(QStringLiteral("Click Here to Change"), parent);
    box->setObjectName(name);
    box->setMinimumHeight(28);
    return box;
}

// "||Blank||" counts as empty; an empty answer or the cancel word gives nothing.
std::optional<QString> answered(const QString &answer)
{
    if (answer.isEmpty() || answer == QLatin1String("||Blank||") || answer == JobState::Skip)
        return std::nullopt;
    return answer;
}

} // namespace

PortalFrame::PortalFrame(PageLink &current, PortalServices services, QWidget *parent)
    : QWidget(parent), m_current(current), m_services(std::move(services))
{
    setObjectName(QStringLiteral("PortalFrame"));
    auto *outer = new QVBoxLayout(this);
    auto *columns = new QHBoxLayout;
    outer->addLayout(columns, 1);

    auto *categories = new QGroupBox(QStringLiteral("Categories"), this);
    auto *categoryColumn = new QVBoxLayout(categories);
    m_file11 = new QListWidget(categories);
    m_file11->setObjectName(QStringLiteral("File11"));
    categoryColumn->addWidget(m_file11, 1);
    auto *categoryButtons = new QHBoxLayout;
    m_addCategory = new QPushButton(QStringLiteral("Add New"), categories);
    m_addCategory->setObjectName(QStringLiteral("AddNewCatButton"));
    m_deleteCategory = new QPushButton(QStringLiteral("Delete"), categories);
    m_deleteCategory->setObjectName(QStringLiteral("DeleteCatButton"));
    categoryButtons->addWidget(m_addCategory);
    categoryButtons->addWidget(m_deleteCategory);
    categoryColumn->addLayout(categoryButtons);
    columns->addWidget(categories, 1);

    auto *links = new QGroupBox(QStringLiteral("Page Links"), this);
    auto *linkColumn = new QVBoxLayout(links);
    m_file21 = new QListWidget(links);
    m_file21->setObjectName(QStringLiteral("File21"));
    m_file21->setEnabled(false);
    linkColumn->addWidget(m_file21, 1);
    auto *linkButtons = new QHBoxLayout;
    m_addLink = new QPushButton(QStringLiteral("Add New"), links);
    m_addLink->setObjectName(QStringLiteral("AndNewLinkButton"));
    m_deleteLink = new QPushButton(QStringLiteral("Delete"), links);
    m_deleteLink->setObjectName(QStringLiteral("DeleteLinkButton"));
    linkButtons->addWidget(m_addLink);
    linkButtons->addWidget(m_deleteLink);
    linkColumn->addLayout(linkButtons);
    columns->addWidget(links, 1);

    auto *linkBox = new QGroupBox(QStringLiteral("Page Link"), this);
    buildLinkBox(linkBox);
    columns->addWidget(linkBox, 1);

    auto *lookBox = new QGroupBox(QStringLiteral("Page Look"), this);
    buildLookBox(lookBox);
    outer->addWidget(lookBox);

    auto *jobRow = new QHBoxLayout;
    m_checkLinks = new QPushButton(QStringLiteral("Check Links"), this);
    m_checkLinks->setObjectName(QStringLiteral("CheckLinksButton"));
    m_preview = new QPushButton(QStringLiteral("Preview"), this);
    m_preview->setObjectName(QStringLiteral("PreviewStartupButton"));
    m_build = new QPushButton(QStringLiteral("Build Home Portal Page"), this);
    m_build->setObjectName(QStringLiteral("BuildStartupButton"));
    m_checkLinks->setToolTip(
        QStringLiteral("Ask for the address of every Page Link and mark those that are dead or "
                       "have moved"));
    m_importBookmarks = new QPushButton(QStringLiteral("Import Bookmarks..."), this);
    m_importBookmarks->setObjectName(QStringLiteral("ImportBookmarksButton"));
    m_importBookmarks->setToolTip(
        QStringLiteral("Add the bookmarks that your browser exported (as an HTML file) as "
                       "Categories and Page Links"));
    jobRow->addWidget(m_importBookmarks);
    jobRow->addWidget(m_checkLinks);
    jobRow->addStretch(1);
    jobRow->addWidget(m_preview);
    jobRow->addWidget(m_build);
    outer->addLayout(jobRow);

    connect(m_file11, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { File11_Click(m_file11->row(item)); });
    connect(m_file21, &QListWidget::itemClicked, this,
            [this](QListWidgetItem *item) { File21_Click(m_file21->row(item)); });
    connect(m_addCategory, &QPushButton::clicked, this, &PortalFrame::AddNewCatButton_Click);
    connect(m_deleteCategory, &QPushButton::clicked, this, &PortalFrame::DeleteCatButton_Click);
    connect(m_addLink, &QPushButton::clicked, this, &PortalFrame::AndNewLinkButton_Click);
    connect(m_deleteLink, &QPushButton::clicked, this, &PortalFrame::DeleteLinkButton_Click);
    connect(m_displayLink, &QLineEdit::editingFinished, this,
            &PortalFrame::DisplayLinkTxt_LostFocus);
    connect(m_url, &QLineEdit::editingFinished, this, &PortalFrame::URLTxt_LostFocus);
    for (int i = 0; i < ShownBullets; ++i)
        connect(m_bullets[static_cast<size_t>(i)], &QToolButton::clicked, this,
                [this, i] { Image111_Click(i); });
    connect(m_logo, &QLineEdit::textEdited, this, &PortalFrame::LogoTxt_Change);
    connect(m_searchLogo, &QPushButton::clicked, this, &PortalFrame::SearchLogoButton_Click);
    connect(m_logoHeight, &QLineEdit::editingFinished, this, &PortalFrame::SULogoH_LostFocus);
    for (int i = 0; i < 3; ++i)
        connect(m_colours[static_cast<size_t>(i)], &QPushButton::clicked, this,
                [this, i] { pageColour_Click(i); });
    connect(m_font, &QPushButton::clicked, this, &PortalFrame::SUPageFont_Click);
    connect(m_checkLinks, &QPushButton::clicked, this, &PortalFrame::CheckLinksButton_Click);
    connect(m_importBookmarks, &QPushButton::clicked, this, &PortalFrame::ImportBookmarks_Click);
    setLinkFieldsEnabled(false);
}

void PortalFrame::buildLinkBox(QWidget *box)
{
    auto *form = new QVBoxLayout(box);
    form->addWidget(new QLabel(QStringLiteral("Displayed Link Name"), box));
    m_displayLink = new QLineEdit(box);
    m_displayLink->setObjectName(QStringLiteral("DisplayLinkTxt"));
    form->addWidget(m_displayLink);
    form->addWidget(new QLabel(QStringLiteral("Hidden Link URL"), box));
    m_url = new QLineEdit(box);
    m_url->setObjectName(QStringLiteral("URLTxt"));
    form->addWidget(m_url);
    form->addWidget(new QLabel(QStringLiteral("Displayed Bullet For This Link"), box));
    auto *grid = new QGridLayout;
    for (int i = 0; i < ShownBullets; ++i) {
        auto *bullet = new QToolButton(box);
        bullet->setObjectName(QStringLiteral("Image111_") + QString::number(i));
        bullet->setCheckable(true);
        bullet->setAutoRaise(true);
        bullet->setIconSize(QSize(18, 18));
        bullet->setToolTip(QStringLiteral("Bullet ") + QString::number(i));
        m_bullets[static_cast<size_t>(i)] = bullet;
        grid->addWidget(bullet, i / 7, i % 7);
    }
    form->addLayout(grid);
    form->addStretch(1);
}

void PortalFrame::buildLookBox(QWidget *box)
{
    auto *row = new QHBoxLayout(box);
    auto *logoForm = new QFormLayout;
    auto *logoRow = new QHBoxLayout;
    m_logo = new QLineEdit(box);
    m_logo->setObjectName(QStringLiteral("LogoTxt"));
    m_searchLogo = new QPushButton(QStringLiteral("Search"), box);
    m_searchLogo->setObjectName(QStringLiteral("SearchLogoButton"));
    logoRow->addWidget(m_logo, 1);
    logoRow->addWidget(m_searchLogo);
    logoForm->addRow(QStringLiteral("Your Logo Location (leave blank to exclude)"), logoRow);
    m_logoHeight = new QLineEdit(box);
    m_logoHeight->setObjectName(QStringLiteral("SULogoH"));
    m_logoHeight->setMaximumWidth(80);
    logoForm->addRow(QStringLiteral("Logo Height (pixels)"), m_logoHeight);
    row->addLayout(logoForm, 2);
    m_logoView = new QLabel(box);
    m_logoView->setObjectName(QStringLiteral("Image21"));
    m_logoView->setFixedSize(72, 72);
    m_logoView->setAlignment(Qt::AlignCenter);
    row->addWidget(m_logoView);
    m_logoImage = new QLabel(box);
    m_logoImage->setObjectName(QStringLiteral("Image5"));
    m_logoImage->hide();

    auto *looks = new QFormLayout;
    m_font = clickBox(QStringLiteral("SUPageFont"), box);
    looks->addRow(QStringLiteral("Page Text Font"), m_font);
    m_fontExample = new QLabel(QStringLiteral("Font Example (ABC abc)"), box);
    m_fontExample->setObjectName(QStringLiteral("SUPageFontexample"));
    looks->addRow(QString(), m_fontExample);
    for (size_t i = 0; i < PageColours.size(); ++i) {
        m_colours[i] = clickBox(QString::fromLatin1(PageColours[i].name), box);
        looks->addRow(QString::fromLatin1(PageColours[i].caption), m_colours[i]);
    }
    row->addLayout(looks, 2);
}

void PortalFrame::loadSettings()
{
    {
        const QSignalBlocker block(m_logo);
        m_logo->setText(GetSetting(SettingKey::LogoPointer, QString()));
    }
    m_logoHeight->setText(
        GetSetting(SettingKey::LogoPointerHeight, SettingDefault::LogoPointerHeight));
    loadLogo(m_logo->text());
    for (size_t i = 0; i < PageColours.size(); ++i)
        showColourBox(m_colours[i], GetSetting(PageColours[i].key, PageColours[i].fallback));
    const QString font = GetSetting(SettingKey::SUPageFont, SettingDefault::SUPageFont);
    m_font->setToolTip(font);
    m_fontExample->setFont(QFont(font, 12));
    for (int i = 0; i < ShownBullets; ++i) {
        const QString picture = Folders::StartupFolder() + QStringLiteral("/Arrow") +
                                QString::number(i) + QStringLiteral(".gif");
        m_bullets[static_cast<size_t>(i)]->setIcon(QIcon(QPixmap(picture)));
    }
    refreshCategories();
}

void PortalFrame::opened(bool /*byTab*/)
{
    loadSettings();
}

void PortalFrame::message(const QString &text)
{
    m_services.ui->Message(text, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Information);
}

void PortalFrame::step(int number)
{
    if (m_services.shapeEvent)
        m_services.shapeEvent(number);
}

void PortalFrame::setLinkFieldsEnabled(bool enabled)
{
    m_displayLink->setEnabled(enabled);
    m_url->setEnabled(enabled);
    for (QToolButton *bullet : m_bullets)
        bullet->setEnabled(enabled);
}

int PortalFrame::borderedBullet() const
{
    for (int i = 0; i < ShownBullets; ++i) {
        if (m_bullets[static_cast<size_t>(i)]->isChecked())
            return i;
    }
    return -1;
}

void PortalFrame::showBorder(int bullet)
{
    for (int i = 0; i < ShownBullets; ++i) {
        QToolButton *button = m_bullets[static_cast<size_t>(i)];
        button->setChecked(i == bullet);
        button->setStyleSheet(i == bullet ? QStringLiteral("QToolButton { border: 2px solid "
                                                           "palette(highlight); }")
                                          : QString());
    }
}

void PortalFrame::refreshCategories()
{
    const QString selected = m_file11->currentItem() ? m_file11->currentItem()->text() : QString();
    const QSignalBlocker block(m_file11);
    m_file11->clear();
    m_file11->addItems(CategoryFiles());
    const auto found = m_file11->findItems(selected, Qt::MatchExactly);
    if (!selected.isEmpty() && !found.isEmpty())
        m_file11->setCurrentItem(found.first());
}

void PortalFrame::refreshLinks()
{
    const QString selected = m_file21->currentItem() ? m_file21->currentItem()->text() : QString();
    const QSignalBlocker block(m_file21);
    m_file21->clear();
    if (!m_file21Path.isEmpty())
        m_file21->addItems(PageLinkFiles(m_file21Path));
    const auto found = m_file21->findItems(selected, Qt::MatchExactly);
    if (!selected.isEmpty() && !found.isEmpty())
        m_file21->setCurrentItem(found.first());
    showMarks();
}

void PortalFrame::followCategory(int row)
{
    if (row < 0 || row >= m_file11->count())
        return;
    {
        const QSignalBlocker block(m_file11);
        m_file11->setCurrentRow(row);
    }
    m_file21Path = CategoryFolder(m_file11->item(row)->text());
    refreshLinks();
    m_file21->setEnabled(true);
}

void PortalFrame::followLink(int row)
{
    if (row < 0 || row >= m_file21->count())
        return;
    {
        const QSignalBlocker block(m_file21);
        m_file21->setCurrentRow(row);
    }
    m_loadedFile = PageLinkPath(m_file21Path, m_file21->item(row)->text().chopped(4));
    m_displayLink->setText(m_current.LinkName);
    m_url->setText(m_current.URLName);
    m_loadedName = m_current.LinkName;
    showBorder(m_current.Bullet);
}

void PortalFrame::File11_Click(int row)
{
    if (row < 0 || row >= m_file11->count())
        return;
    m_displayLink->clear();
    m_url->clear();
    m_loadedFile.clear();
    showBorder(-1);
    setLinkFieldsEnabled(false);
    {
        const QSignalBlocker block(m_file11);
        m_file11->setCurrentRow(row);
    }
    m_file21Path = CategoryFolder(m_file11->item(row)->text());
    {
        const QSignalBlocker block(m_file21);
        m_file21->setCurrentRow(-1);
    }
    refreshLinks();
    m_file21->setEnabled(true);
    step(51);
}

void PortalFrame::File21_Click(int row)
{
    if (row < 0 || row >= m_file21->count() || m_file21Path.isEmpty())
        return;
    {
        const QSignalBlocker block(m_file21);
        m_file21->setCurrentRow(row);
    }
    m_loadedFile = m_file21Path + QLatin1Char('/') + m_file21->item(row)->text();
    // A file that can't be read shows empty fields, which write nothing until a name is typed.
    LoadPageLink(m_loadedFile, m_current);
    m_displayLink->setText(m_current.LinkName);
    m_url->setText(m_current.URLName);
    m_displayLink->setModified(false);
    m_url->setModified(false);
    m_loadedName = m_current.LinkName;
    showBorder(m_current.Bullet);
    setLinkFieldsEnabled(true);
    step(52);
}

void PortalFrame::AddNewCatButton_Click()
{
    JobState &state = *m_services.state;
    const std::optional<QString> name =
        answered(AskUser(*m_services.ui, state, QStringLiteral("Enter the category name"),
                         QString(), QStringLiteral("Hide"), 30));
    state.UserResponse.clear();
    if (!name)
        return;
    const QString problem = FileNameProblem(*name);
    if (!problem.isEmpty()) {
        message(problem);
        return;
    }
    if (!MakeCategory(*name)) {
        message(QStringLiteral("The category '") + *name +
                QStringLiteral("' could not be made in ") + Folders::StartupFolder() +
                QLatin1Char('.'));
        return;
    }
    m_file21Path = Folders::StartupFolder() + QLatin1Char('/') + *name;
    refreshCategories();
    const auto found = m_file11->findItems(*name + QStringLiteral(".Cat"), Qt::MatchExactly);
    if (!found.isEmpty()) {
        const QSignalBlocker block(m_file11);
        m_file11->setCurrentItem(found.first());
    }
    m_displayLink->clear();
    m_url->clear();
    m_loadedFile.clear();
    showBorder(-1);
    setLinkFieldsEnabled(false);
    refreshLinks();
    m_file21->setEnabled(true);
    step(51);
}

void PortalFrame::DeleteCatButton_Click()
{
    QListWidgetItem *item = m_file11->currentItem();
    if (!item)
        return;
    const QString file = item->text();
    if (m_services.ui->Message(
            QStringLiteral("Are you sure you want to delete '") + file + QStringLiteral("'?"),
            Tarnwick, JobUi::Buttons::YesNo, JobUi::Icon::Question) != JobUi::Answer::Yes)
        return;
    // Only the .Cat goes: the folder keeps its links, and a Category made later under the same
    // name shows them again.
    QFile::remove(Folders::StartupFolder() + QLatin1Char('/') + file);
    {
        const QSignalBlocker block(m_file11);
        m_file11->setCurrentRow(-1);
    }
    refreshCategories();
    m_file21Path.clear();
    refreshLinks();
    m_file21->setEnabled(false);
    m_displayLink->clear();
    m_url->clear();
    m_loadedFile.clear();
    showBorder(-1);
    setLinkFieldsEnabled(false);
}

void PortalFrame::AndNewLinkButton_Click()
{
    if (m_file21Path.isEmpty() || !m_file11->currentItem()) {
        message(QStringLiteral("You need to select a category."));
        return;
    }
    JobState &state = *m_services.state;
    const std::optional<QString> name = answered(AskUser(
        *m_services.ui, state, QStringLiteral("Enter the Display Link Name for the Page Link"),
        QString(), QStringLiteral("Hide"), 30));
    state.UserResponse.clear();
    if (!name)
        return;
    const QString problem = FileNameProblem(*name);
    if (!problem.isEmpty()) {
        message(problem);
        return;
    }
    const std::optional<QString> url = answered(AskUser(
        *m_services.ui, state,
        QStringLiteral("Enter the URL to be associated with this Page link (You can copy from "
                       "the Address field of your Internet browser)"),
        QString(), QStringLiteral("Hide"), 0));
    state.UserResponse.clear();
    if (!url)
        return;
    m_current.LinkName = *name;
    m_current.URLName = *url;
    m_current.Bullet = NewLinkBullet;
    const QString path = PageLinkPath(m_file21Path, *name);
    if (!SavePageLink(path, m_current)) {
        message(QStringLiteral("The Page Link could not be written to ") + path + QLatin1Char('.'));
        return;
    }
    refreshLinks();
    const auto found = m_file21->findItems(*name + QStringLiteral(".ptr"), Qt::MatchExactly);
    if (!found.isEmpty())
        File21_Click(m_file21->row(found.first()));
    step(52);
}

void PortalFrame::DeleteLinkButton_Click()
{
    QListWidgetItem *item = m_file21->currentItem();
    if (!item || m_file21Path.isEmpty())
        return;
    const QString file = item->text();
    if (m_services.ui->Message(
            QStringLiteral("Are you sure you want to delete '") + file + QStringLiteral("'?"),
            Tarnwick, JobUi::Buttons::YesNo, JobUi::Icon::Question) != JobUi::Answer::Yes)
        return;
    QFile::remove(m_file21Path + QLatin1Char('/') + file);
    m_displayLink->clear();
    m_url->clear();
    m_loadedFile.clear();
    showBorder(-1);
    setLinkFieldsEnabled(false);
    {
        const QSignalBlocker block(m_file21);
        m_file21->setCurrentRow(-1);
    }
    refreshLinks();
}

void PortalFrame::saveCurrentLink()
{
    if (m_loadedFile.isEmpty() || m_file21Path.isEmpty())
        return;
    m_current.LinkName = m_displayLink->text();
    m_current.URLName = m_url->text();
    // The file follows the name: a changed name writes a file of its own and leaves the old one;
    // an unchanged name writes the file the fields came from.
    const bool renamed = m_current.LinkName != m_loadedName;
    // An unchanged name is written as it was read, so its escapes ("|4" for a comma) survive.
    if (!renamed)
        m_current.LinkName = DecodeRecordText(m_loadedName);
    const QString path = renamed ? PageLinkPath(m_file21Path, m_current.LinkName) : m_loadedFile;
    if (renamed && !m_current.LinkName.isEmpty()) {
        const QString problem = FileNameProblem(m_current.LinkName);
        if (!problem.isEmpty()) {
            message(problem);
            return;
        }
    }
    if (!SavePageLink(path, m_current))
        return; // an emptied name writes nothing
    if (renamed) {
        m_loadedFile = path;
        m_loadedName = m_current.LinkName;
        refreshLinks();
        const auto found = m_file21->findItems(QFileInfo(path).fileName(), Qt::MatchExactly);
        if (!found.isEmpty()) {
            const QSignalBlocker block(m_file21);
            m_file21->setCurrentItem(found.first());
        }
    }
}

void PortalFrame::DisplayLinkTxt_LostFocus()
{
    if (!m_displayLink->isModified())
        return;
    m_displayLink->setModified(false);
    saveCurrentLink();
}

void PortalFrame::URLTxt_LostFocus()
{
    if (!m_url->isModified())
        return;
    m_url->setModified(false);
    saveCurrentLink();
}

void PortalFrame::Image111_Click(int index)
{
    if (m_loadedFile.isEmpty()) {
        showBorder(-1);
        return;
    }
    m_current.Bullet = static_cast<qint16>(index);
    showBorder(index);
    saveCurrentLink();
}

void PortalFrame::loadLogo(const QString &path)
{
    const QPixmap picture(QString(path).replace(QLatin1Char('\\'), QLatin1Char('/')));
    m_logoImage->setPixmap(picture);
    if (picture.isNull()) {
        m_logoView->clear();
        return;
    }
    m_logoImage->resize(picture.size());
    m_logoView->setPixmap(
        picture.scaled(m_logoView->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void PortalFrame::LogoTxt_Change()
{
    SaveSetting(SettingKey::LogoPointer, m_logo->text());
    loadLogo(m_logo->text());
}

void PortalFrame::SearchLogoButton_Click()
{
    if (!m_services.chooseLogo)
        return;
    const QString chosen = m_services.chooseLogo(QFileInfo(m_logo->text()).absolutePath());
    if (chosen.isEmpty())
        return;
    m_logo->setText(chosen);
    LogoTxt_Change();
}

void PortalFrame::SULogoH_LostFocus()
{
    const QString height = m_logoHeight->text().trimmed();
    SaveSetting(SettingKey::LogoPointerHeight, height);
    const QPixmap *picture = nullptr;
    const QPixmap shown = m_logoImage->pixmap();
    if (!shown.isNull())
        picture = &shown;
    bool ok = false;
    const int pixels = height.toInt(&ok);
    if (picture && ok && picture->height() > 0)
        SaveSetting(SettingKey::LogoPointerWidth,
                    QString::number(static_cast<qint64>(double(pixels) * picture->width() /
                                                        picture->height())));
}

void PortalFrame::showColourBox(QPushButton *box, const QString &colour)
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

void PortalFrame::pageColour_Click(int index)
{
    if (!m_services.chooseColour || index < 0 || index >= int(PageColours.size()))
        return;
    const ColourBox &box = PageColours[static_cast<size_t>(index)];
    const std::optional<QString> chosen =
        m_services.chooseColour(GetSetting(box.key, box.fallback), this);
    if (!chosen)
        return;
    SaveSetting(box.key, *chosen);
    showColourBox(m_colours[static_cast<size_t>(index)], *chosen);
}

void PortalFrame::SUPageFont_Click()
{
    if (!m_services.chooseFont)
        return;
    const std::optional<QString> chosen =
        m_services.chooseFont(GetSetting(SettingKey::SUPageFont, SettingDefault::SUPageFont), this);
    if (!chosen)
        return;
    SaveSetting(SettingKey::SUPageFont, *chosen);
    m_font->setToolTip(*chosen);
    m_fontExample->setFont(QFont(*chosen, 12));
}
