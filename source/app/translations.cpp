#include "app/translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

bool InstallToolkitTranslations()
{
    static QTranslator translator;
    if (!translator.isEmpty())
        return true;
    if (!translator.load(QStringLiteral("qtbase_hu"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        return false;
    return QCoreApplication::installTranslator(&translator);
}
