#include "PhotoFrameSettings.h"

#include "JobUi.h"
#include "PhotoPage.h"
#include "PictureSizing.h"
#include "Settings.h"
#include "SettingsKeys.h"

#include <QCheckBox>
#include <QColor>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

struct ColourBox
{
    const char *name;
    const char *caption;
    const QString &key;
    const char *fallback; // what the box opens with when the key is absent
};

const ColourBox colourBoxes[3] = {
    {"PhotoBackgroundColor", "Page Background Color", SettingKey::PhotoBGColor, "#000000"},
    {"PhotoTitleColor", "Page Title Color", SettingKey::PhotoTitleColor, "#FFFFFF"},
    {"PhotoTextColor", "Page Text Color", SettingKey::PhotoTextColor, "#FFFFFF"},
};

// The camera rows of the photo page: the short cuts that fill the thumbnail and expanded boxes.
QList<CameraPreset> photoCameraRows()
{
    QList<CameraPreset> rows;
    for (const CameraPreset &preset : CameraTable()) {
        if (!preset.small.isEmpty())
            rows.append(preset);
    }
    for (const CameraPreset &preset : TodaysCameraRows())
        rows.append(preset);
    return rows;
}

} // namespace

PhotoFrameSettings::PhotoFrameSettings(PhotoPage &page, PhotoFrameServices &services,
                                       QWidget *parent)
    : QWidget(parent), m_page(page), m_services(services)
{
    setObjectName(QStringLiteral("PhotoSettingsPage"));

    auto *left = new QVBoxLayout;
    left->addWidget(buildLookBox());
    left->addWidget(buildLayoutBox());
    left->addStretch(1);

    auto *columns = new QHBoxLayout(this);
    columns->setContentsMargins(10, 10, 10, 10);
    columns->setSpacing(14);
    columns->addLayout(left, 1);
    columns->addWidget(buildSizeBox(), 1);

    // Start-up: the looks get their built-in values when absent, and the placement of the
    // pictures alternates when the setting asks for it.
    const ColourAndFontSettings looks = WriteColourAndFontDefaults();
    showColour(0, looks.PhotoBGColor);
    showColour(1, looks.PhotoTitleColor);
    showColour(2, looks.PhotoTextColor);
    m_fontExample->setFont(QFont(looks.PhotoFont, 12));
    m_fontBox->setToolTip(looks.PhotoFont);

    const bool alternate =
        ParseBoolSetting(ReadStartupSetting(SettingKey::AlernateLR)).value_or(true);
    {
        const QSignalBlocker blocker(m_alternate);
        m_alternate->setChecked(alternate);
    }
    if (alternate)
        fillAlternating();
}

QString PhotoFrameSettings::InstructionsText()
{
    return QStringLiteral("\nReducing the size of the image notably speeds up the upload process "
                          "and makes the images present better. Cameras with different "
                          "resolution require a different reduction.\n");
}

QWidget *PhotoFrameSettings::buildLookBox()
{
    auto *box = new QGroupBox(QStringLiteral("Look of the page"), this);
    auto *form = new QFormLayout(box);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    for (int i = 0; i < 3; ++i) {
        m_colourBoxes[i] = new QPushButton(QStringLiteral("Click Here to Change"), box);
        m_colourBoxes[i]->setObjectName(QLatin1String(colourBoxes[i].name));
        m_colourBoxes[i]->setMinimumHeight(30);
        connect(m_colourBoxes[i], &QPushButton::clicked, this, [this, i] { ColourBox_Click(i); });
        form->addRow(QLatin1String(colourBoxes[i].caption), m_colourBoxes[i]);
    }
    m_fontBox = new QPushButton(QStringLiteral("Click Here to Change"), box);
    m_fontBox->setObjectName(QStringLiteral("PhotoFont"));
    m_fontBox->setMinimumHeight(30);
    connect(m_fontBox, &QPushButton::clicked, this, &PhotoFrameSettings::PhotoFont_Click);
    form->addRow(QStringLiteral("Page Text Font"), m_fontBox);
    m_fontExample = new QLabel(QStringLiteral("Font Example (ABC abc)"), box);
    m_fontExample->setObjectName(QStringLiteral("PhotoFontExample"));
    m_fontExample->setMinimumHeight(30);
    form->addRow(QString(), m_fontExample);
    return box;
}

QWidget *PhotoFrameSettings::buildSizeBox()
{
    auto *box = new QGroupBox(QStringLiteral("Size of the pictures on the page"), this);

    auto *instructions = new QLabel(InstructionsText().trimmed(), box);
    instructions->setObjectName(QStringLiteral("instructions"));
    instructions->setWordWrap(true);

    auto *sizes = new QGridLayout;
    const QString captions[2] = {QStringLiteral("Thumbnail: % of Original (Reduction)"),
                                 QStringLiteral("Expanded image: % of Original (Reduction)")};
    for (int i = 0; i < 2; ++i) {
        m_resize[i] = new QLineEdit(GetSetting(ResizeSettingKey(i), ResizeDefault(i)), box);
        m_resize[i]->setObjectName(QStringLiteral("My_resize_%1").arg(i));
        m_resize[i]->setMaximumWidth(70);
        m_resize[i]->setAlignment(Qt::AlignRight);
        m_resize[i]->installEventFilter(this);
        connect(m_resize[i], &QLineEdit::textChanged, this, [this, i](const QString &text) {
            if (window()->isVisible())
                SaveSetting(ResizeSettingKey(i), text);
        });
        sizes->addWidget(m_resize[i], i, 0);
        sizes->addWidget(new QLabel(captions[i], box), i, 1);
    }
    m_quality = new QLineEdit(GetSetting(JpegQualityKey, JpegQualityDefault), box);
    m_quality->setObjectName(QStringLiteral("JpegQuality"));
    m_quality->setMaximumWidth(70);
    m_quality->setAlignment(Qt::AlignRight);
    m_quality->setToolTip(QStringLiteral("85 makes pages that load quickly on a phone; 100 makes "
                                         "the largest files."));
    m_quality->installEventFilter(this);
    connect(m_quality, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (window()->isVisible())
            SaveSetting(JpegQualityKey, text);
    });
    sizes->addWidget(m_quality, 2, 0);
    sizes->addWidget(new QLabel(QStringLiteral("JPEG quality of the copies (50 to 100)"), box), 2,
                     1);
    sizes->setColumnStretch(1, 1);

    auto *camera = new QGridLayout;
    camera->setHorizontalSpacing(12);
    auto *heading = new QLabel(QStringLiteral("Camera Type   Thumbnail   Expanded image"), box);
    heading->setObjectName(QStringLiteral("CameraTableHeading"));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    camera->addWidget(heading, 0, 0, 1, 2);
    int line = 1;
    for (const CameraPreset &row : photoCameraRows()) {
        auto *label = new QLabel(row.rowLabel, box);
        auto *button = new QPushButton(row.caption, box);
        button->setObjectName(QStringLiteral("Command1_%1").arg(row.button));
        button->setToolTip(
            QStringLiteral("Thumbnail %1%, expanded image %2%").arg(row.small, row.large));
        const int index = row.button;
        connect(button, &QPushButton::clicked, this, [this, index] { Command1_Click(index); });
        camera->addWidget(label, line, 0);
        camera->addWidget(button, line, 1);
        ++line;
    }
    camera->setColumnStretch(2, 1);

    auto *layout = new QVBoxLayout(box);
    layout->addWidget(instructions);
    layout->addSpacing(6);
    layout->addLayout(sizes);
    layout->addSpacing(10);
    layout->addLayout(camera);
    layout->addStretch(1);
    return box;
}

QWidget *PhotoFrameSettings::buildLayoutBox()
{
    auto *box = new QGroupBox(QStringLiteral("Pictures and folders"), this);
    m_alternate =
        new QCheckBox(QStringLiteral("Default Image Position to Alternating Left and Right"), box);
    m_alternate->setObjectName(QStringLiteral("AlernateCheck"));
    connect(m_alternate, &QCheckBox::clicked, this, &PhotoFrameSettings::AlernateCheck_Click);

    m_uploadPath = new QLineEdit(box);
    m_uploadPath->setObjectName(QStringLiteral("ChoosenUploadPath_Settings"));
    m_uploadPath->setReadOnly(true);
    m_uploadPath->setFocusPolicy(Qt::NoFocus);

    m_layoutForm = new QFormLayout;
    m_layoutForm->addRow(QStringLiteral("Working folder"), m_uploadPath);

    auto *layout = new QVBoxLayout(box);
    layout->addWidget(m_alternate);
    layout->addLayout(m_layoutForm);
    return box;
}

void PhotoFrameSettings::showColour(int index, const QString &colour)
{
    const QColor value(colour.size() == 7 ? colour : QStringLiteral("#000000"));
    const QColor ink = value.lightness() > 140 ? QColor(Qt::black) : QColor(Qt::white);
    m_colourBoxes[index]->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; color: %2; border: 1px solid "
                       "palette(mid); border-radius: 4px; padding: 4px 12px; }")
            .arg(value.name(), ink.name()));
    m_colourBoxes[index]->setToolTip(colour);
}

void PhotoFrameSettings::ColourBox_Click(int index)
{
    if (!m_services.chooseColour)
        return;
    const ColourBox &box = colourBoxes[index];
    const QString current = GetSetting(box.key, QLatin1String(box.fallback));
    const QString chosen = m_services.chooseColour(current, QLatin1String(box.caption));
    if (chosen.isEmpty())
        return;
    SaveSetting(box.key, chosen);
    showColour(index, chosen);
}

void PhotoFrameSettings::PhotoFont_Click()
{
    if (!m_services.chooseFont)
        return;
    const QString current = GetSetting(SettingKey::PhotoFont, QStringLiteral("Arial"));
    const QString chosen = m_services.chooseFont(current);
    if (chosen.isEmpty())
        return;
    SaveSetting(SettingKey::PhotoFont, chosen);
    m_fontExample->setFont(QFont(chosen, 12));
    m_fontBox->setToolTip(chosen);
}

void PhotoFrameSettings::Command1_Click(int index)
{
    std::array<QString, 3> boxes = {m_resize[0]->text(), m_resize[1]->text(), QString()};
    if (!ApplyCameraPreset(index, boxes))
        return;
    m_resize[0]->setText(boxes[0]);
    m_resize[1]->setText(boxes[1]);
    // A box that already held the value saw no change: the short cut writes both anyway.
    SaveSetting(ResizeSettingKey(0), m_resize[0]->text());
    SaveSetting(ResizeSettingKey(1), m_resize[1]->text());
}

void PhotoFrameSettings::My_resize_LostFocus(int index)
{
    const QString limited = LimitResizeText(m_resize[index]->text());
    if (limited != m_resize[index]->text())
        m_resize[index]->setText(limited);
}

void PhotoFrameSettings::JpegQuality_LostFocus()
{
    const QString limited = LimitJpegQualityText(m_quality->text());
    if (limited != m_quality->text())
        m_quality->setText(limited);
    SaveSetting(JpegQualityKey, limited);
}

void PhotoFrameSettings::AlernateCheck_Click()
{
    if (!m_alternate->isChecked()) {
        SaveSetting(SettingKey::AlernateLR, QStringLiteral("False"));
        return;
    }
    const JobUi::Answer answer = m_services.ui->Message(
        QStringLiteral("This will overwrite pervious settings. Do you want to continue?"),
        QStringLiteral("Tarnwick"), JobUi::Buttons::YesNo, JobUi::Icon::Question);
    if (answer == JobUi::Answer::Yes) {
        SaveSetting(SettingKey::AlernateLR, QStringLiteral("True"));
        fillAlternating();
    } else {
        SaveSetting(SettingKey::AlernateLR, QStringLiteral("False"));
        const QSignalBlocker blocker(m_alternate);
        m_alternate->setChecked(false);
    }
}

void PhotoFrameSettings::fillAlternating()
{
    bool left = true;
    for (int row = 0; row < PhotoPage::Rows; ++row) {
        left = !left;
        m_page.PhotoLeft[row] = left ? QStringLiteral("True") : QStringLiteral("False");
    }
}

void PhotoFrameSettings::setWorkingFolder(const QString &folder)
{
    m_uploadPath->setText(folder);
    m_uploadPath->setToolTip(folder);
}

void PhotoFrameSettings::addField(const QString &caption, QWidget *field)
{
    m_layoutForm->addRow(caption, field);
}

bool PhotoFrameSettings::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut) {
        for (int i = 0; i < 2; ++i) {
            if (watched == m_resize[i])
                My_resize_LostFocus(i);
        }
        if (watched == m_quality)
            JpegQuality_LostFocus();
    }
    return QWidget::eventFilter(watched, event);
}
