#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QTimer>

#include <functional>
#include <memory>

// Acts on the next modal window of type T once it is open (polling while its exec runs), so a
// test can answer the real dialog. Gives up after timeoutMs, leaving the dialog to the test's
// own time limit.
template <typename T> void whenModal(std::function<void(T *)> action, int timeoutMs = 5000)
{
    auto timer = std::make_shared<QTimer>();
    auto waited = std::make_shared<int>(0);
    timer->setInterval(10);
    QObject::connect(timer.get(), &QTimer::timeout, [timer, waited, action, timeoutMs] {
        *waited += 10;
        if (auto *modal = qobject_cast<T *>(QApplication::activeModalWidget());
            modal && modal->isVisible()) {
            timer->stop();
            action(modal);
        } else if (*waited > timeoutMs) {
            timer->stop();
        }
    });
    timer->start();
}

// Answers the next message box with the button of that role, and records its title and text.
struct MessageSeen
{
    QString title;
    QString text;
    bool seen = false;
};

inline std::shared_ptr<MessageSeen> answerMessageBox(QMessageBox::StandardButton button,
                                                     int timeoutMs = 5000)
{
    auto seen = std::make_shared<MessageSeen>();
    whenModal<QMessageBox>(
        [seen, button](QMessageBox *box) {
            seen->title = box->windowTitle();
            seen->text = box->text();
            seen->seen = true;
            if (QAbstractButton *b = box->button(button))
                b->click();
            else
                box->reject();
        },
        timeoutMs);
    return seen;
}
