#include "Pickers.h"

#include "frmFont.h"
#include "frmSelectColor.h"

std::optional<QString> PickColor(const QString &start, QWidget *parent)
{
    frmSelectColor dialog(start, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.SelectedColor();
}

std::optional<QString> PickFont(const QString &start, QWidget *parent)
{
    frmFont dialog(start.isEmpty() ? QStringLiteral("Arial") : start, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.SelectedFont();
}
