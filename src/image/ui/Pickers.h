#pragma once

#include <QString>

#include <optional>

class QWidget;

// The program's two small pickers, shared by every "Click Here to Change" box of the settings
// pages (photo page, Web Log, master page, Portal).
//
// Both open a dialog above parent (window-modal to it) and wait for it in a local event loop,
// so the caller's window keeps repainting; they return when the user closes the dialog.

// "Select a Color": opens with start, a colour text "#RRGGBB" (any case; a bad pair counts 0),
// shown as both the old and the new sample. Returns the chosen colour as "#RRGGBB" in capitals,
// or nothing when the user cancelled or closed the dialog.
std::optional<QString> PickColor(const QString &start, QWidget *parent = nullptr);

// "Select a font": opens with start, a font family name ("" counts as "Arial"), listing the
// TrueType (smoothly scalable) families. Returns the family the user accepted (which is start
// when none was picked from the list), or nothing when the user cancelled or closed the dialog.
std::optional<QString> PickFont(const QString &start, QWidget *parent = nullptr);
