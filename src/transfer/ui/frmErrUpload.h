#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class QTimer;

// The transfer's error form: the error text, and for a reset connection (12031) the note that
// it closes by itself, which it does after autoCloseMs (five seconds). Timer2 keeps it in
// front while it is up.
class frmErrUpload final : public QDialog
{
    Q_OBJECT
public:
    explicit frmErrUpload(QWidget *parent = nullptr);

    // Fills the form for text and number (Load).
    void Load(const QString &text, int number, int autoCloseMs = 5000);
    // Shows the form and returns once it has gone again, the event loop running meanwhile.
    void ShowAndWait();

signals:
    void closed();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    QLabel *m_text;
    QLabel *m_note;
    QPushButton *m_ok;
    QTimer *m_autoClose;
    QTimer *m_front;
};
