#pragma once

#include <QString>

// What the transfer engine and the upload steps show while a file goes across: the progress
// dialog dlgFTP with its flood bar, and the error form frmErrUpload. The window implements
// it with the real dialogs (DialogTransferUi); every call may run the event loop.
class TransferUi
{
public:
    virtual ~TransferUi() = default;

    // dlgFTP shown modeless (loading it when needed); hidden but kept; unloaded.
    virtual void ShowProgress() = 0;
    virtual void HideProgress() = 0;
    virtual void UnloadProgress() = 0;

    // The flood bar: a new total and status text; the value so far (clamped to the total);
    // a status line shown until the next update.
    virtual void FloodFillInit(double total, const QString &status) = 0;
    virtual void FloodFillUpdate(double value) = 0;
    virtual void FloodShowStatus(const QString &text) = 0;

    // The hourglass over the program while a file goes across.
    virtual void SetBusyCursor(bool busy) = 0;

    // frmErrUpload with the text; returns once the form has gone (OK, or by itself five
    // seconds after it came up when number is 12031).
    virtual void ShowUploadError(const QString &text, int number) = 0;
};

// Shows nothing: for work without a window.
class SilentTransferUi final : public TransferUi
{
public:
    void ShowProgress() override {}
    void HideProgress() override {}
    void UnloadProgress() override {}
    void FloodFillInit(double, const QString &) override {}
    void FloodFillUpdate(double) override {}
    void FloodShowStatus(const QString &) override {}
    void SetBusyCursor(bool) override {}
    void ShowUploadError(const QString &, int) override {}
};
