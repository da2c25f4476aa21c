#pragma once

#include "JobUi.h"

class frmMain;

// The job seam with the real forms: frmInputBox, message boxes parented to the main window,
// MessageWithScroll, the labels of the progress frame, the desktop's opener and the clipboard.
class GuiJobUi final : public JobUi
{
public:
    explicit GuiJobUi(frmMain &window);

    void ShowInputBox(JobState &state) override;
    Answer Message(const QString &text, const QString &title, Buttons buttons = Buttons::Ok,
                   Icon icon = Icon::Information,
                   std::optional<Answer> defaultButton = std::nullopt) override;
    void ShowScrollMessage(const QString &text) override;
    void SetStatusText(const QString &text) override;
    void SetStepOf(const QString &text) override;
    bool OpenUrl(const QUrl &url) override;
    void SetClipboard(QMimeData *data) override;
    void ProcessEvents() override;

private:
    frmMain &m_window;
};
