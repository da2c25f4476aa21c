#pragma once

#include "BusyCursor.h"
#include "TransferUi.h"

#include <QPointer>

class QWidget;
class dlgFTP;
struct JobState;

// TransferUi with the real dialogs: dlgFTP, loaded on demand and parented to the main window,
// and frmErrUpload.
class DialogTransferUi final : public TransferUi
{
public:
    explicit DialogTransferUi(JobState &state, QWidget *parent = nullptr);
    ~DialogTransferUi() override;

    void ShowProgress() override;
    void HideProgress() override;
    void UnloadProgress() override;
    void FloodFillInit(double total, const QString &status) override;
    void FloodFillUpdate(double value) override;
    void FloodShowStatus(const QString &text) override;
    void SetBusyCursor(bool busy) override;
    void ShowUploadError(const QString &text, int number) override;

    // The loaded dialog, or nullptr.
    dlgFTP *dialog() const { return m_dialog; }
    // How long frmErrUpload stays up by itself (5000 ms).
    void setErrorAutoCloseMs(int ms) { m_errorAutoCloseMs = ms; }

private:
    dlgFTP *load();

    JobState &m_state;
    QPointer<QWidget> m_parent;
    QPointer<dlgFTP> m_dialog;
    int m_errorAutoCloseMs = 5000;
    BusyCursor m_busy;
    // A dialog that the user cancelled is not loaded again until the next file.
    bool m_cancelled = false;
};
