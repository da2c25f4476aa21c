#include "DialogTransferUi.h"

#include "dlgFTP.h"
#include "frmErrUpload.h"

#include <QApplication>

DialogTransferUi::DialogTransferUi(JobState &state, QWidget *parent)
    : m_state(state), m_parent(parent)
{
}

DialogTransferUi::~DialogTransferUi()
{
    SetBusyCursor(false);
    delete m_dialog;
}

dlgFTP *DialogTransferUi::load()
{
    if (!m_dialog && !m_cancelled) {
        m_dialog = new dlgFTP(m_state, m_parent);
        QObject::connect(m_dialog, &dlgFTP::cancelConfirmed, m_dialog, [this] {
            m_cancelled = true;
            m_busy.set(false);
            m_dialog->deleteLater();
        });
    }
    return m_dialog;
}

void DialogTransferUi::ShowProgress()
{
    m_cancelled = false;
    if (dlgFTP *dialog = load()) {
        dialog->show();
        dialog->raise();
    }
}

void DialogTransferUi::HideProgress()
{
    m_cancelled = false;
    if (dlgFTP *dialog = load())
        dialog->hide();
}

void DialogTransferUi::UnloadProgress()
{
    delete m_dialog;
    m_cancelled = false;
}

void DialogTransferUi::FloodFillInit(double total, const QString &status)
{
    if (m_dialog)
        m_dialog->FloodFillInit(total, status);
}

void DialogTransferUi::FloodFillUpdate(double value)
{
    if (m_dialog)
        m_dialog->FloodFillUpdate(value);
}

void DialogTransferUi::FloodShowStatus(const QString &text)
{
    if (m_dialog)
        m_dialog->FloodShowStatus(text);
}

void DialogTransferUi::SetBusyCursor(bool busy)
{
    m_busy.set(busy);
}

void DialogTransferUi::ShowUploadError(const QString &text, int number)
{
    frmErrUpload form(m_parent);
    form.Load(text, number, m_errorAutoCloseMs);
    form.ShowAndWait();
}
