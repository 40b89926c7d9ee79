#include "FirstFrame.h"

#include <QLabel>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.resize(1180, 720);
    if (argc > 2) // any text at all brings in the fonts
        new QLabel(QStringLiteral("Text"), &window);
    new FirstFrame(&window, argc > 1 ? argv[1] : "0");
    window.show();
    return QApplication::exec();
}
