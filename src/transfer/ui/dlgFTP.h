#pragma once

#include <QDialog>
#include <QWidget>

class QPushButton;
class QLabel;
class QTimer;
struct JobState;

// picFlood: the progress bar of dlgFTP. It shows the value as a whole percentage of the total,
// "%", a blank and the status text, centred; the part of the bar up to the value is filled,
// and the text is drawn in the two colours swapped inside the filled part, so it stays legible
// across the bar's edge.
class FloodBar final : public QWidget
{
    Q_OBJECT
public:
    explicit FloodBar(QWidget *parent = nullptr);

    void setTotal(double total) { m_total = total; }
    void setValue(double value);
    void setStatus(const QString &status);
    // A status line shown in place of the status until the next setValue.
    void showTransient(const QString &line);
    double total() const { return m_total; }
    double value() const { return m_value; }
    QString status() const { return m_status; }
    // The text drawn now; "" when the total is 0 (nothing is drawn then).
    QString text() const;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_total = 0;
    double m_value = 0;
    QString m_status;
    QString m_transient;
    bool m_hasTransient = false;
};

// The progress dialog of one file's transfer: the flood bar, Cancel (also Escape), which asks
// before it stops the job, and "Run in background", which toggles BackgroundRequested. Shown
// modeless over the main window; Timer1 keeps it in front, or at the back while the transfer
// runs in the background.
class dlgFTP final : public QDialog
{
    Q_OBJECT
public:
    explicit dlgFTP(JobState &state, QWidget *parent = nullptr);

    void FloodFillInit(double total, const QString &status);
    void FloodFillUpdate(double value);
    void FloodShowStatus(const QString &text);

    FloodBar *flood() const { return m_flood; }

signals:
    // The user confirmed the cancel: UserResponse is "!!Skip!!" and UploadCancelled set.
    void cancelConfirmed();

protected:
    void reject() override;

private slots:
    void Command1_Click();
    void Command2_Click();
    void Timer1_Timer();

private:
    JobState &m_state;
    FloodBar *m_flood;
    QLabel *m_image;
    QPushButton *m_cancel;
    QPushButton *m_background;
    QTimer *m_timer;
};
