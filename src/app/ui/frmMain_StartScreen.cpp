#include "frmMain.h"

#include "StartScreenArt.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const char *const Explanations[frmMain::FunctionCount] = {
    "Turn a folder of pictures into a page of thumbnails on your web site.",
    "Keep copies of your important files safe on your web space.",
    "Put one file on your web space and get a link to mail to anyone.",
    "Write dated stories with pictures and publish them as a web log.",
    "Make a personal home page of your favourite links.",
    "Connect to your web space, look around, and change your settings."};

constexpr int IconSize = 44;
constexpr int TravellerSize = 36;
constexpr int TrackHeight = 56;
constexpr int Step = 5;

// The strip under the buttons: a dotted road from the computer to the web space.
class AnimationTrack final : public QWidget
{
public:
    explicit AnimationTrack(QWidget *parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("AnimationTrack"));
        setFixedHeight(TrackHeight);
        setMaximumWidth(900);
        const qreal dpr = devicePixelRatioF();
        m_home = new QLabel(this);
        m_home->setPixmap(StartScreenArt::Computer(TrackHeight - 8, dpr));
        m_web = new QLabel(this);
        m_web->setPixmap(StartScreenArt::WebSpace(TrackHeight - 8, dpr));
    }
    int startMark() const { return TrackHeight + 6; }
    int endMark() const { return width() - TrackHeight - 6 - TravellerSize; }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        m_home->setGeometry(0, 4, TrackHeight - 8, TrackHeight - 8);
        m_web->setGeometry(width() - TrackHeight + 8, 4, TrackHeight - 8, TrackHeight - 8);
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        QPen pen(QColor(0xb8, 0xc7, 0xdb), 3, Qt::DotLine, Qt::RoundCap);
        p.setPen(pen);
        const int y = height() / 2;
        p.drawLine(TrackHeight, y, width() - TrackHeight, y);
    }

private:
    QLabel *m_home = nullptr;
    QLabel *m_web = nullptr;
};

} // namespace

QWidget *frmMain::buildStartScreen()
{
    m_startFrame = new QFrame(this);
    m_startFrame->setObjectName(QStringLiteral("StartFrame"));
    m_startFrame->setAutoFillBackground(true);
    QPalette background = m_startFrame->palette();
    background.setColor(QPalette::Window, QColor(0xf4, 0xf7, 0xfb));
    m_startFrame->setPalette(background);

    auto *title = new QLabel(QStringLiteral("Tarnwick"), m_startFrame);
    title->setObjectName(QStringLiteral("StartTitle"));
    QFont titleFont = title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 2.6);
    titleFont.setBold(true);
    title->setFont(titleFont);
    title->setStyleSheet(QStringLiteral("color: #2b4a7a;"));
    title->setAlignment(Qt::AlignHCenter);

    auto *subtitle =
        new QLabel(QStringLiteral("Your pictures, files and pages on your own web space. "
                                  "What would you like to do?"),
                   m_startFrame);
    subtitle->setObjectName(QStringLiteral("StartSubtitle"));
    QFont subtitleFont = subtitle->font();
    subtitleFont.setPointSizeF(subtitleFont.pointSizeF() * 1.2);
    subtitle->setFont(subtitleFont);
    subtitle->setStyleSheet(QStringLiteral("color: #4a5568;"));
    subtitle->setAlignment(Qt::AlignHCenter);
    subtitle->setWordWrap(true);

    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(28);
    grid->setVerticalSpacing(26);
    const qreal dpr = devicePixelRatioF();
    for (int i = 0; i < FunctionCount; ++i) {
        auto *button = new QPushButton(FunctionName(i), m_startFrame);
        button->setObjectName(QStringLiteral("FunctionSelectButton_%1").arg(i));
        button->setIcon(QIcon(StartScreenArt::FunctionIcon(i, IconSize, dpr)));
        button->setIconSize(QSize(IconSize, IconSize));
        button->setMinimumSize(300, 84);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(QStringLiteral(
            "QPushButton { font-size: 16px; font-weight: 600; color: #1f3555; text-align: left;"
            " padding: 10px 14px; background: white; border: 1px solid #c9d6e8;"
            " border-radius: 10px; }"
            "QPushButton:hover { background: #eaf3ff; border-color: #3d8bd9; }"
            "QPushButton:pressed { background: #d6e8ff; }"
            "QPushButton:focus { border: 2px solid #3d8bd9; }"));
        button->setEnabled(false); // until the function joins
        connect(button, &QPushButton::clicked, this, [this, i] { FunctionSelectButton_Click(i); });
        m_functionButtons[static_cast<size_t>(i)] = button;

        auto *explanation = new QLabel(QString::fromLatin1(Explanations[i]), m_startFrame);
        explanation->setObjectName(QStringLiteral("FunctionExplanation_%1").arg(i));
        explanation->setWordWrap(true);
        explanation->setStyleSheet(QStringLiteral("color: #4a5568; padding: 0 6px;"));
        explanation->setAlignment(Qt::AlignLeft | Qt::AlignTop);

        auto *cell = new QVBoxLayout;
        cell->setSpacing(8);
        cell->addWidget(button);
        cell->addWidget(explanation);
        grid->addLayout(cell, i / 3, i % 3);
    }
    for (int column = 0; column < 3; ++column)
        grid->setColumnStretch(column, 1);

    auto *track = new AnimationTrack(m_startFrame);
    m_track = track;
    m_image7[0] = new QLabel(track);
    m_image7[0]->setObjectName(QStringLiteral("Image7_0"));
    m_image7[0]->setPixmap(StartScreenArt::TravellingPage(TravellerSize, dpr));
    m_image7[1] = new QLabel(track);
    m_image7[1]->setObjectName(QStringLiteral("Image7_1"));
    m_image7[1]->setPixmap(StartScreenArt::ReturningLink(TravellerSize, dpr));
    const int y = (TrackHeight - TravellerSize) / 2;
    m_image7[0]->setGeometry(track->startMark(), y, TravellerSize, TravellerSize);
    m_image7[1]->setGeometry(track->startMark(), y, TravellerSize, TravellerSize);
    m_image7[1]->hide();

    auto *content = new QWidget(m_startFrame);
    content->setMaximumWidth(1080);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(40, 0, 40, 0);
    column->setSpacing(0);
    column->addWidget(title);
    column->addSpacing(6);
    column->addWidget(subtitle);
    column->addSpacing(40);
    column->addLayout(grid);
    column->addSpacing(40);
    column->addWidget(track);

    auto *outer = new QVBoxLayout(m_startFrame);
    outer->setContentsMargins(24, 24, 24, 24);
    outer->addStretch(2);
    outer->addWidget(content, 0, Qt::AlignHCenter);
    outer->addStretch(3);
    return m_startFrame;
}

void frmMain::Timer2_Timer()
{
    if (!m_startFrame->isVisible())
        return;
    auto *track = static_cast<AnimationTrack *>(m_track);
    const int y = (TrackHeight - TravellerSize) / 2;
    if (m_direction == QStringLiteral("R")) {
        QLabel *page = m_image7[0];
        page->show();
        m_image7[1]->hide();
        if (page->x() + Step >= track->endMark()) {
            // The page arrived: the link travels back.
            m_direction = QStringLiteral("L");
            page->hide();
            m_image7[1]->move(track->endMark(), y);
            m_image7[1]->show();
        } else {
            page->move(page->x() + Step, y);
        }
    } else {
        QLabel *link = m_image7[1];
        link->show();
        m_image7[0]->hide();
        if (link->x() - Step <= track->startMark()) {
            m_direction = QStringLiteral("R");
            link->hide();
            m_image7[0]->move(track->startMark(), y);
            m_image7[0]->show();
        } else {
            link->move(link->x() - Step, y);
        }
    }
}
