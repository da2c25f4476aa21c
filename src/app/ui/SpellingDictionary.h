#pragma once

#include <QString>

// The name of the spelling dictionary the spell checker would use: the one of the user's
// language if it is installed, else "en_US" if that is; "" when none is installed.
QString InstalledSpellingDictionary();

// How the program's questions name it: the Hunspell spelling dictionary "en_US", or a Hunspell
// spelling dictionary when none is installed.
QString SpellingDictionaryPhrase();
