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

constexpr int StepsWidth = 520;

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

InstructionForm::InstructionForm(int index, const FunctionInstructions &page, QWidget *parent,
                                 std::function<void()> moreHelp)
    : QDialog(parent), m_index(index), m_key(page.key)
{
    setObjectName(page.form);
    setWindowTitle(page.title + QStringLiteral(" - Instructions"));
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    setAutoFillBackground(true);
    QPalette card = palette();
    card.setColor(QPalette::Window, Qt::white);
    setPalette(card);

    auto *heading = new QLabel(page.title, this);
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
    const QStringList &texts = page.steps;
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
    m_check1->setChecked(GetSetting(m_key, QStringLiteral("Show")) == QStringLiteral("Show"));
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
    SaveSetting(m_key, m_check1->isChecked() ? QStringLiteral("Show") : QStringLiteral("Hide"));
}
