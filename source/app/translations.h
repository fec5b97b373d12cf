// Hungarian in the toolkit's own texts too (file dialogs, the colour chooser,
// message box buttons), whatever the user's locale: every other text of the
// program is Hungarian.
#pragma once

// Loads Qt's Hungarian translations (qtbase_hu.qm, Debian's
// qt6-translations-l10n) into the running application; false when they are
// not installed, and the toolkit stays in English.
bool InstallToolkitTranslations();
