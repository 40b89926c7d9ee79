#include <QApplication>
#include <QLabel>

/// A window and nothing in it: what any program built on Qt costs at the least. With an argument it holds one text,
/// which brings in the fonts.
int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QWidget window;
    window.resize(1180, 720);
    if (argc > 1)
        new QLabel(QStringLiteral("Text"), &window);
    window.show();
    return QApplication::exec();
}
