#include "FrameFixture.h"

#include "Folders.h"
#include "ReadyToSendPage.h"
#include "TestMain.h"
#include "TestWidgets.h"

#include <QAbstractButton>
#include <QDir>
#include <QFocusEvent>
#include <QImage>
#include <QListWidget>
#include <QPainter>
#include <QTest>

bool MakeJpeg(const QString &path, QSize size, QColor colour)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QPainter painter(&image);
    painter.fillRect(0, 0, size.width() / 4, size.height() / 4, Qt::red);
    painter.end();
    return image.save(path, "JPG", 95);
}

FrameFixture::FrameFixture() : m_page(std::make_unique<PhotoPage>())
{
    ClearTemporaryHome();
    Folders::MakeFolderTree();
    m_source = TestHomePath() + QStringLiteral("/Pictures/Holiday");
    QDir().mkpath(m_source);

    m_frame = std::make_unique<PhotoFrame>(*m_page, m_ui, m_state);
    PhotoFrameServices &services = m_frame->services();
    services.usePrinter = false;
    services.inputBox = [this](const QString &question, const QString &, const QString &def) {
        inputQuestions.append(question);
        inputDefaults.append(def);
        return inputAnswers.isEmpty() ? QString() : inputAnswers.dequeue();
    };
    services.chooseFolder = [this](const QString &) {
        return folderAnswers.isEmpty() ? QString() : folderAnswers.dequeue();
    };
    services.choosePdfFile = [this](const QString &) { return pdfPath; };
    QObject::connect(m_frame.get(), &PhotoFrame::shapeEventRequested,
                     [this](int step) { steps.append(step); });

    m_frame->readyToSend()->setSourceFolder(m_source);
    m_frame->resize(1240, 680);
    m_frame->show();
    if (!QTest::qWaitForWindowExposed(m_frame.get()))
        qWarning("the frame was not shown");
}

FrameFixture::~FrameFixture() = default;

QString FrameFixture::workingFolder() const
{
    return m_frame->readyToSend()->workingFolder();
}

QString FrameFixture::readyFile(const QString &name) const
{
    return workingFolder() + QLatin1Char('/') + name;
}

void FrameFixture::addPictures(const QStringList &names, QSize size)
{
    for (const QString &name : names)
        MakeJpeg(sourceFile(name), size);
    m_frame->readyToSend()->refreshSource();
}

QListWidget *FrameFixture::file2() const
{
    return find<QListWidget>(QStringLiteral("File2"));
}

QListWidget *FrameFixture::file3() const
{
    return find<QListWidget>(QStringLiteral("File3"));
}

QStringList FrameFixture::names(QListWidget *list) const
{
    QStringList result;
    for (int i = 0; i < list->count(); ++i)
        result.append(list->item(i)->text());
    return result;
}

void FrameFixture::selectSource(const QStringList &names)
{
    QListWidget *list = file2();
    list->clearSelection();
    for (const QString &name : names)
        clickRow(list, name, Qt::ControlModifier);
    for (const QString &name : names) {
        const auto found = list->findItems(name, Qt::MatchExactly);
        if (!found.isEmpty() && !found.first()->isSelected())
            found.first()->setSelected(true);
    }
}

void FrameFixture::click(const QString &name)
{
    TestWidgets::click(*m_frame, name);
}

void FrameFixture::clickRow(QListWidget *list, const QString &text, Qt::KeyboardModifiers modifiers)
{
    const auto found = list->findItems(text, Qt::MatchExactly);
    if (found.isEmpty()) {
        QTest::qFail(qPrintable(QStringLiteral("no row ") + text), __FILE__, __LINE__);
        return;
    }
    list->scrollToItem(found.first());
    const QRect rect = list->visualItemRect(found.first());
    QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers, rect.center());
}

void FrameFixture::leave(QWidget *widget)
{
    QFocusEvent event(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(widget, &event);
}
