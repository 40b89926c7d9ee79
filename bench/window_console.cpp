#include "AppDelegate.h"
#include "EarlyFonts.h"
#include "FirstFrame.h"
#include "FormMainView.h"

#include <QTemporaryDir>

int main(int argc, char **argv)
{
    EarlyFonts fonts;
    QApplication application(argc, argv);
    fonts.wait();
    const QTemporaryDir folder;
    AppDelegate delegate({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
    new FirstFrame(&delegate.window(), argc > 1 ? argv[1] : "0");
    delegate.window().show();
    return QApplication::exec();
}
