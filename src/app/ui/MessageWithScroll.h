#pragma once

#include <QDialog>

class QPlainTextEdit;

// A long text in a scrolling box; Command1 closes it. ShowText waits modally.
class MessageWithScroll final : public QDialog
{
    Q_OBJECT
public:
    explicit MessageWithScroll(QWidget *parent);

    void ShowText(const QString &text);
    QString text() const;

private:
    QPlainTextEdit *m_text = nullptr;
};
