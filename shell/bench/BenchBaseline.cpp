// The yardstick for BenchStartup: a minimal Qt Widgets program that opens one
// empty main window of the same size and quits at its first paint.
#include "FirstPaint.h"

#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[])
{
    QElapsedTimer clock;
    clock.start();
    QApplication application(argc, argv);
    QMainWindow window;
    auto *central = new QWidget(&window);
    window.setCentralWidget(central);
    window.resize(894, 763);
    FirstPaint probe(central, clock);
    central->installEventFilter(&probe);
    window.show();
    return application.exec();
}
