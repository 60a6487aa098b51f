#include "core/AppState.h"
#include "shell/AppIcon.h"
#include "shell/MDIForm1.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    wr::InitApplicationIdentity();
    QApplication::setWindowIcon(wr::AppIcon());
    QGuiApplication::setDesktopFileName(QStringLiteral("io.github.wrpd6t.wrpd6t"));

    wr::MDIForm1 window;
    window.show();
    return application.exec();
}
