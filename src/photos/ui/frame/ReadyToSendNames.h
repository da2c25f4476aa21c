#pragma once

#include <QString>

// Names of the Ready to Send list.

// Puts suffix before the last "." of name: ("Tree.jpg", "_Left") gives "Tree_Left.jpg". A name
// without "." stays as it is.
QString AddSuffix(const QString &name, const QString &suffix);

// A number as the list writes numbers the user typed: whole numbers without a decimal point
// ("51"), others in their shortest exact form ("12.5").
QString DecimalText(double value);
