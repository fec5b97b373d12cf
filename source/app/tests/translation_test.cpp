// The toolkit's own dialogs speak Hungarian.
#include <gtest/gtest.h>

#include "app/filedialogs.h"
#include "app/translations.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QPushButton>
#include <QTimer>

TEST(TranslationTest, TheOpenDialogsCancelButtonIsHungarian)
{
    ASSERT_TRUE(InstallToolkitTranslations()) << "qt6-translations-l10n is not installed";
    QString cancel = "(no dialog)";
    QTimer::singleShot(0, [&] {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<QFileDialog*>(w))
            {
                if (auto* box = dialog->findChild<QDialogButtonBox*>())
                    cancel = box->button(QDialogButtonBox::Cancel)->text();
                dialog->reject();
            }
    });
    EXPECT_EQ(OpenFileDialog("ORVLevel", "Pályák"), "");
    EXPECT_EQ(cancel.toStdString(), "Mégse");
}
