#include "FirstFrame.h"

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.resize(1180, 720);
    new FirstFrame(&window, argc > 1 ? argv[1] : "0");
    window.show();
    return QApplication::exec();
}
